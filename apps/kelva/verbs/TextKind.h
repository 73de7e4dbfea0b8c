#ifndef KELVA_APPS_KELVA_VERBS_TEXT_KIND_H_
#define KELVA_APPS_KELVA_VERBS_TEXT_KIND_H_

#include <string_view>

namespace apps {

/// What a file is whose first bytes are these, if a person could read it: "an HTML page", "a text"; empty for anything
/// else, and for no bytes. A character that is cut off at the end does not count.
std::string_view TextKind(std::string_view head);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_TEXT_KIND_H_
