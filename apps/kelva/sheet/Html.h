#ifndef KELVA_APPS_KELVA_SHEET_HTML_H_
#define KELVA_APPS_KELVA_SHEET_HTML_H_

#include <string>
#include <string_view>

namespace apps {

/// Any bytes as text of an HTML document, also inside a quoted attribute: what is not a printable character is shown as
/// \xNN or \u{N}, and nothing in it can begin a tag, end an attribute or name a character.
std::string Html(std::string_view bytes);

/// The relative address of a file: `path` has slashes between its folders. Each byte that an address cannot hold
/// becomes %XX, so that no name can be taken for a scheme, a query or a way out of the folder.
std::string RelativeAddress(std::string_view path);

/// The address of an image that stands inside the document.
std::string ImageAddress(std::string_view jpegFile);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_SHEET_HTML_H_
