#ifndef KELVA_VCAM_DEVICE_BATCH_TEXT_H_
#define KELVA_VCAM_DEVICE_BATCH_TEXT_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vcam {

/// One file asked for in a batch.
struct BatchItem {
  std::string key;
  /// Empty for the file with this key, or the extension of another file of the same picture.
  std::string extension;
};

/// Takes a batch request apart: keys of 40 digits, each followed by its qualifier, nothing between. A qualifier is
/// empty, or a full stop and one of the four extensions of a picture's files. Nothing is returned for any other text.
std::optional<std::vector<BatchItem>> ParseBatchText(std::string_view text);

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_BATCH_TEXT_H_
