// The texts in a camera's information record.

#include "apps/camera/Information.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include "apps/commandline/Printable.h"
#include "base/Hex.h"

namespace apps {
namespace {

constexpr std::array<std::string_view, 6> kNames = {"serial", "vendor", "product", "revision", "firmware", "volume"};
constexpr std::size_t kSerial = 0;
constexpr std::size_t kVendor = 1;
constexpr std::size_t kFirmware = 4;
constexpr std::size_t kDumpWidth = 16;

// UTF-8 without control characters, but for the NULs.
bool IsText(std::string_view bytes) {
  while (!bytes.empty()) {
    const Utf8Piece piece = FirstUtf8(bytes);
    if (!piece.valid || (piece.codePoint != 0 && IsCommand(piece.codePoint))) return false;
    bytes.remove_prefix(piece.length);
  }
  return true;
}

}  // namespace

std::vector<std::string> InformationTexts(const _VscCdbCameraInformation& record) {
  std::string_view rest(reinterpret_cast<const char*>(record.information), sizeof record.information);
  if (!IsText(rest)) return {};
  std::vector<std::string> texts;
  // A text may be empty, so two NULs do not end the list. It ends where only zeros follow.
  while (rest.find_first_not_of('\0') != std::string_view::npos) {
    const std::size_t end = std::min(rest.find('\0'), rest.size());
    texts.emplace_back(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return texts;
}

bool AreKnownTexts(const std::vector<std::string>& texts, const RegistryCamera& facts) {
  return texts.size() > kFirmware && !facts.serial.empty() && texts[kSerial] == facts.serial &&
         texts[kVendor] == facts.vendor;
}

std::string FirmwareIn(const _VscCdbCameraInformation& record, const RegistryCamera& facts) {
  const std::vector<std::string> texts = InformationTexts(record);
  return AreKnownTexts(texts, facts) ? texts[kFirmware] : "";
}

std::string InformationName(std::size_t index) {
  return index < kNames.size() ? std::string(kNames[index]) : "";
}

std::string InformationDump(const _VscCdbCameraInformation& record) {
  const std::string_view bytes(reinterpret_cast<const char*>(record.information), sizeof record.information);
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += kDumpWidth) {
    std::array<char, 24> offset{};
    std::snprintf(offset.data(), offset.size(), "%03zx  ", at);
    text += offset.data() + base::Hex(bytes.substr(at, kDumpWidth)) + "\n";
  }
  return text;
}

}  // namespace apps
