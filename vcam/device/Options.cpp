// The layouts of the catalogue that --catalogue offers.
#include "vcam/device/Options.h"

namespace vcam {

CatalogueLayout CatalogueLayout::Standard() {
  return {128, {{0, 0}, {1, 24}, {2, 28}, {3, 32}, {4, 36}, {5, 40}, {6, 44}, {7, 48}, {8, 96}, {9, 124}}};
}

CatalogueLayout CatalogueLayout::Reordered() {
  return {128, {{9, 0}, {8, 4}, {7, 32}, {6, 80}, {5, 84}, {4, 88}, {3, 92}, {2, 96}, {1, 100}, {0, 104}}};
}

CatalogueLayout CatalogueLayout::UnknownFields() {
  CatalogueLayout layout = Standard();
  layout.stride = 144;
  layout.fields.insert(layout.fields.begin(), {10, 128});
  layout.fields.insert(layout.fields.begin() + 5, {200, 140});
  layout.fields.push_back({0xFFFFFFFF, 144});
  return layout;
}

CatalogueLayout CatalogueLayout::Wide() {
  CatalogueLayout layout = Standard();
  layout.stride = 200;
  for (CatalogueField& field : layout.fields) field.offset += 40;
  return layout;
}

std::optional<CatalogueLayout> CatalogueLayout::ByName(std::string_view name) {
  if (name == "standard") return Standard();
  if (name == "reordered") return Reordered();
  if (name == "unknown-fields") return UnknownFields();
  if (name == "wide") return Wide();
  return std::nullopt;
}

}  // namespace vcam
