#ifndef KELVA_VCAM_DEVICE_LAYOUT_BY_NAME_H_
#define KELVA_VCAM_DEVICE_LAYOUT_BY_NAME_H_

#include <optional>
#include <string_view>

#include "vcam/device/Options.h"

namespace vcam {

/// The layout that `--catalogue` means: standard, reordered, unknown-fields or wide.
std::optional<CatalogueLayout> LayoutByName(std::string_view name);

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_LAYOUT_BY_NAME_H_
