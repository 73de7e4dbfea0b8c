#ifndef KELVA_APPS_KELVA_VERBS_OWN_JSON_H_
#define KELVA_APPS_KELVA_VERBS_OWN_JSON_H_

#include <optional>
#include <string>
#include <string_view>

namespace apps {

// What one process of this tool reads of a line that another one printed with --json. They are of one build, so these
// know the form in which Json prints, and no other.

/// A member that is a whole number; nothing when the line has none of that name. Takes the first one of that name.
std::optional<unsigned long long> NumberIn(std::string_view line, std::string_view name);
/// A member that is a text.
std::optional<std::string> TextIn(std::string_view line, std::string_view name);
/// The line with one member more, a text that stands last. A line that is no object comes back as it is.
std::string WithText(std::string_view line, std::string_view name, std::string_view text);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_OWN_JSON_H_
