// Reads the text with which a host asks for several files by key.
#include "vcam/device/BatchText.h"

#include <algorithm>

#include "vcam/device/KeyIndex.h"
#include "vcam/device/Pictures.h"

namespace vcam {
namespace {

constexpr std::size_t kQualifierLength = 4;

bool IsExtension(std::string_view text) {
  return std::find(kPictureExtensions.begin(), kPictureExtensions.end(), text) != kPictureExtensions.end();
}

}  // namespace

std::optional<std::vector<BatchItem>> ParseBatchText(std::string_view text) {
  std::vector<BatchItem> items;
  while (!text.empty()) {
    if (!IsKey(text.substr(0, kKeyLength))) return std::nullopt;
    BatchItem item{std::string(text.substr(0, kKeyLength)), {}};
    text.remove_prefix(kKeyLength);
    if (!text.empty() && text.front() == '.') {
      item.extension = text.substr(1, kQualifierLength - 1);
      if (!IsExtension(item.extension)) return std::nullopt;
      text.remove_prefix(kQualifierLength);
    }
    items.push_back(std::move(item));
  }
  return items;
}

}  // namespace vcam
