#ifndef KELVA_APPS_KELVA_SURVEY_ASSUMPTIONS_H_
#define KELVA_APPS_KELVA_SURVEY_ASSUMPTIONS_H_

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/camera/Registry.h"
#include "apps/kelva/survey/Questions.h"
#include "src/wifi/DcfObj.h"
#include "src/wifi/OffsetOrder.h"

namespace apps::survey {

/// Something that this project takes for granted of a camera, although the camera decides it.
struct Assumption {
  std::string_view name;      ///< stable, for scripts: "clock-layout"
  std::string_view sentence;  ///< what is assumed, for people
  std::optional<bool> holds;  ///< nothing when this camera gave no occasion to tell
  std::string seen;           ///< what the camera sent, printable
};

// One function for each, over bytes that a camera sent.

Assumption JudgeInformationSize(const DataSet& asked, const DataSet& whole);
Assumption JudgeInformationTexts(const std::string& record, const RegistryCamera& facts);
/// Two readings of the clock and the time between them.
Assumption JudgeClock(const std::string& first, const std::string& second, std::chrono::milliseconds between);
Assumption JudgeBattery(const std::string& answer);
Assumption JudgeCatalogueFields(const DataSet& catalogue);
Assumption JudgeCatalogueSize(const DataSet& catalogue);
Assumption JudgeDates(std::span<const DcfObj> pictures);
Assumption JudgeKeyShape(std::span<const DcfObj> pictures);
/// `file` is the picture's first.
Assumption JudgeKey(const DcfObj& picture, const DataSet& file);
Assumption JudgeValue5(const DcfObj& picture, unsigned long long jpegSize);
/// The size that the folder lists, nothing when it does not list the file, beside that of the opened file.
Assumption JudgeListedSize(std::optional<unsigned long long> listed, const DataSet& file);
Assumption JudgeSurplus(const DataSet& file);
Assumption JudgeOffsets(kelva::OffsetOrder order);

/// The catalogue's header, its field table and its first records: what of it is kept. Empty when it has no whole header.
std::string CatalogueHead(const std::string& catalogue, std::size_t records);

}  // namespace apps::survey

#endif  // KELVA_APPS_KELVA_SURVEY_ASSUMPTIONS_H_
