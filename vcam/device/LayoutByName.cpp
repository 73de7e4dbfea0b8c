#include "vcam/device/LayoutByName.h"

namespace vcam {

std::optional<CatalogueLayout> LayoutByName(std::string_view name) {
  if (name == "standard") return CatalogueLayout::Standard();
  if (name == "reordered") return CatalogueLayout::Reordered();
  if (name == "unknown-fields") return CatalogueLayout::UnknownFields();
  if (name == "wide") return CatalogueLayout::Wide();
  return std::nullopt;
}

}  // namespace vcam
