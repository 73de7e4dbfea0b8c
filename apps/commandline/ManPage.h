#ifndef KELVA_APPS_COMMANDLINE_MAN_PAGE_H_
#define KELVA_APPS_COMMANDLINE_MAN_PAGE_H_

#include <span>
#include <string>
#include <string_view>

#include "apps/commandline/Verb.h"

namespace apps {

/// The manual page kelva(1): what the tool is, all verbs, common options, exit status, environment, files.
std::string ManPageOfTool(std::span<const Verb> table, std::string_view version);

/// The manual page of one verb: kelva-get(1), kelva-wifi-name(1).
std::string ManPageOfVerb(const Verb& verb, std::string_view version);

/// "kelva-wifi-name".
std::string ManName(const Verb& verb);

/// Text as troff takes it: backslashes, dashes and a dot or quote at the start of a line lose their meaning.
std::string Troff(std::string_view text);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_MAN_PAGE_H_
