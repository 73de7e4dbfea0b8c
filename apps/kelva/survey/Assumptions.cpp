// What this project assumes of a camera, held against what one has sent.
#include "apps/kelva/survey/Assumptions.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "apps/camera/Battery.h"
#include "apps/camera/Clock.h"
#include "apps/camera/Information.h"
#include "apps/camera/Picture.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/Words.h"
#include "apps/files/Sha1.h"
#include "base/Hex.h"
#include "src/wifi/DcfLayout.h"
#include "src/wifi/VscRecords.h"

namespace apps::survey {
namespace {

using std::to_string;

constexpr char kTooLarge[] = "the file is too large to be read whole";

std::string Announced(const DataSet& set) {
  return Counted(set.announced, "byte") + " announced, " + to_string(set.bytes.size()) + (set.whole ? "" : " or more") +
         " came";
}

std::optional<ClockTime> TimeIn(const std::string& bytes) {
  _VscCdbTime record{};
  if (bytes.size() != sizeof record.bytes) return std::nullopt;
  std::memcpy(record.bytes, bytes.data(), bytes.size());
  return DecodeClock(record);
}

std::optional<_VscCdbDcfHeader> HeaderOf(const std::string& catalogue) {
  _VscCdbDcfHeader header{};
  if (catalogue.size() < sizeof header) return std::nullopt;
  std::memcpy(&header, catalogue.data(), sizeof header);
  const std::int64_t size = kelva::DcfHeaderSize(header);
  if (size < static_cast<std::int64_t>(sizeof header) || size > static_cast<std::int64_t>(catalogue.size())) {
    return std::nullopt;
  }
  return header;
}

// How many pictures have something, and an example of one that has not.
template <typename Has>
Assumption JudgeEach(std::string_view name, std::string_view sentence, std::span<const DcfObj> pictures, const Has& has,
                     std::string_view what) {
  if (pictures.empty()) return {name, sentence, std::nullopt, "no picture"};
  const auto with = std::count_if(pictures.begin(), pictures.end(), has);
  return {name, sentence, with == static_cast<std::ptrdiff_t>(pictures.size()),
          to_string(with) + " of " + Counted(pictures.size(), "picture") + (pictures.size() == 1 ? " has " : " have ") +
              std::string(what)};
}

}  // namespace

Assumption JudgeInformationSize(const DataSet& asked, const DataSet& whole) {
  // More than one byte beyond the announced size would end the library's process.
  const bool holds = asked.bytes.size() == sizeof(_VscCdbCameraInformation) && whole.whole &&
                     asked.bytes.size() <= std::uint64_t{asked.announced} + 1;
  return {"information-size", "the information record has 644 bytes, or one less announced", holds,
          Announced(asked) + "; " + to_string(whole.bytes.size()) + " when more were asked for"};
}

Assumption JudgeInformationTexts(const std::string& record, const RegistryCamera& facts) {
  _VscCdbCameraInformation information{};
  std::memcpy(information.information, record.data(), std::min(record.size(), sizeof information.information));
  const std::vector<std::string> texts = InformationTexts(information);
  return {"information-texts",
          "the information record is texts: serial number, vendor, product, revision, firmware, volume",
          AreKnownTexts(texts, facts), texts.empty() ? "no texts" : Counted(texts.size(), "text")};
}

Assumption JudgeClock(const std::string& first, const std::string& second, std::chrono::milliseconds between) {
  constexpr std::string_view kName = "clock-layout";
  constexpr std::string_view kSentence = "the clock is seven 16-bit numbers from year to millisecond";
  const auto one = TimeIn(first);
  const auto two = TimeIn(second);
  const std::string bytes = base::Hex(first) + ", then " + base::Hex(second);
  if (!one || !two) return {kName, kSentence, false, bytes};
  // A clock may count whole seconds only.
  constexpr std::chrono::milliseconds kSlack(1000);
  const auto passed = *two - *one;
  const bool ticks = passed.count() > 0 && passed > between - kSlack && passed < between + kSlack;
  return {kName, kSentence, ticks, IsoText(*one) + ", then " + IsoText(*two)};
}

Assumption JudgeBattery(const std::string& answer) {
  constexpr std::string_view kName = "battery-unit";
  constexpr std::string_view kSentence = "the battery level is per cent, from 0 to 100";
  if (answer.size() != sizeof(float)) return {kName, kSentence, false, Counted(answer.size(), "byte") + " came"};
  float level = 0;
  std::memcpy(&level, answer.data(), sizeof level);
  // At most 1 is a fraction more probably than an empty battery.
  return {kName, kSentence, IsReadableLevel(level) && level > 1 && level <= 100,
          LevelText(level) + " (" + LevelBits(level) + ")"};
}

Assumption JudgeCatalogueFields(const DataSet& catalogue) {
  constexpr std::string_view kName = "catalogue-fields";
  constexpr std::string_view kSentence = "the catalogue has version 1 and each of the types 0 to 9";
  const auto header = HeaderOf(catalogue.bytes);
  if (!header) return {kName, kSentence, false, "no whole header in " + Counted(catalogue.bytes.size(), "byte")};
  std::set<std::uint32_t> known;
  std::string fields;
  constexpr int kMostNamed = 64;
  for (int i = 0; i < std::min(header->fieldCount, kMostNamed); ++i) {
    const auto* raw = reinterpret_cast<const _VscCdbDcfHeader*>(catalogue.bytes.data());
    const kelva::DcfField field = kelva::DcfFieldAt(raw, i);
    fields += (fields.empty() ? "" : ", ") + to_string(field.type) + " at " + to_string(field.offset);
    if (field.type <= 9) known.insert(field.type);
  }
  return {
      kName, kSentence, header->version == 1 && known.size() == 10,
      "version " + to_string(header->version) + ", " + to_string(header->stride) + " bytes a picture; types " + fields};
}

Assumption JudgeCatalogueSize(const DataSet& catalogue) {
  return {"catalogue-size", "the catalogue ends with its first chunk that is not full", catalogue.whole,
          to_string(catalogue.bytes.size()) + (catalogue.whole ? " bytes" : " bytes and more")};
}

Assumption JudgeDates(std::span<const DcfObj> pictures) {
  return JudgeEach(
      "date-shape", "type 8 is the time of a picture as text, 2026-03-14 15:09:26", pictures,
      [](const DcfObj& picture) { return PictureTime(picture).has_value(); }, "a time");
}

Assumption JudgeKeyShape(std::span<const DcfObj> pictures) {
  return JudgeEach(
      "key-shape", "type 7 is a key as text, 40 hexadecimal digits", pictures,
      [](const DcfObj& picture) { return PictureKey(picture).has_value(); }, "a key");
}

Assumption JudgeKey(const DcfObj& picture, const DataSet& file) {
  constexpr std::string_view kName = "key-is-sha1";
  constexpr std::string_view kSentence = "the key is the SHA-1 of the picture's first file";
  const auto key = PictureKey(picture);
  if (!key) return {kName, kSentence, std::nullopt, "no key"};
  if (!file.whole && file.bytes.size() < file.announced) return {kName, kSentence, std::nullopt, kTooLarge};
  const std::string sha1 = Sha1(std::span(file.bytes).first(std::min<std::size_t>(file.bytes.size(), file.announced)));
  return {kName, kSentence, *key == sha1, *key == sha1 ? "the same" : "another number"};
}

Assumption JudgeValue5(const DcfObj& picture, unsigned long long jpegSize) {
  return {"size-field", "type 5 is the size of the JPG file in bytes", picture.value5 == jpegSize,
          to_string(picture.value5) + " for a file of " + to_string(jpegSize) + " bytes"};
}

Assumption JudgeListedSize(std::optional<unsigned long long> listed, const DataSet& file) {
  constexpr std::string_view kName = "listed-size";
  constexpr std::string_view kSentence = "a folder lists the size that an opened file announces";
  if (!listed) return {kName, kSentence, std::nullopt, "the folder does not list the file"};
  return {kName, kSentence, *listed == file.announced,
          to_string(*listed) + " listed, " + to_string(file.announced) + " announced"};
}

Assumption JudgeSurplus(const DataSet& file) {
  constexpr std::string_view kName = "surplus-byte";
  constexpr std::string_view kSentence = "a file has as many bytes as announced, or one more";
  const std::uint64_t arrived = file.bytes.size();
  const bool tooMany = arrived > std::uint64_t{file.announced} + 1;
  if (!file.whole && !tooMany) return {kName, kSentence, std::nullopt, kTooLarge};
  return {kName, kSentence, arrived >= file.announced && !tooMany, Announced(file)};
}

Assumption JudgeOffsets(kelva::OffsetOrder order) {
  constexpr std::string_view kName = "offsets";
  constexpr std::string_view kSentence = "a file may be read in any order";
  if (order == kelva::OffsetOrder::kUnknown) return {kName, kSentence, std::nullopt, "the first file does not tell"};
  const bool any = order == kelva::OffsetOrder::kAny;
  return {kName, kSentence, any, any ? "offsets count" : "the offset of a read has no effect"};
}

std::string CatalogueHead(const std::string& catalogue, std::size_t records) {
  const auto header = HeaderOf(catalogue);
  if (!header || header->stride < 0) return "";
  const auto size = static_cast<std::size_t>(kelva::DcfHeaderSize(*header));
  const std::size_t all =
      (catalogue.size() - size) / std::max<std::size_t>(static_cast<std::size_t>(header->stride), 1);
  return catalogue.substr(0, size + std::min(all, records) * static_cast<std::size_t>(header->stride));
}

}  // namespace apps::survey
