#ifndef KELVA_APPS_KELVA_SHEET_STYLE_H_
#define KELVA_APPS_KELVA_SHEET_STYLE_H_

#include <string_view>

namespace apps {

/// How a contact sheet looks: rows of pictures of one height, light or dark as the reader has it, and on paper.
extern const std::string_view kStyle;

}  // namespace apps

#endif  // KELVA_APPS_KELVA_SHEET_STYLE_H_
