// The texts in a camera's information record.

#include "apps/camera/Information.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace apps {
namespace {

constexpr std::array<std::string_view, 6> kNames = {"serial", "vendor", "product", "revision", "firmware", "volume"};
constexpr std::size_t kFirmware = 4;

}  // namespace

std::vector<std::string> InformationTexts(const _VscCdbCameraInformation& record) {
  std::string_view rest(reinterpret_cast<const char*>(record.information), sizeof record.information);
  std::vector<std::string> texts;
  // A text may be empty, so two NULs do not end the list. It ends where only zeros follow.
  while (rest.find_first_not_of('\0') != std::string_view::npos) {
    const std::size_t end = std::min(rest.find('\0'), rest.size());
    texts.emplace_back(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return texts;
}

std::string FirmwareIn(const _VscCdbCameraInformation& record) {
  const std::vector<std::string> texts = InformationTexts(record);
  return texts.size() > kFirmware ? texts[kFirmware] : "";
}

std::string InformationName(std::size_t index) {
  return index < kNames.size() ? std::string(kNames[index]) : "";
}

}  // namespace apps
