#ifndef KELVA_APPS_COMMANDLINE_MAN_PAGE_H_
#define KELVA_APPS_COMMANDLINE_MAN_PAGE_H_

#include <string>
#include <string_view>

#include "apps/commandline/Program.h"

namespace apps {

/// The manual page of the program: what it is, all verbs, common options, exit status, environment.
std::string ManPageOf(const Program& program);

/// The manual page of one verb: kelva-get(1), kelva-wifi-name(1).
std::string ManPageOfVerb(const Program& program, const Verb& verb);

/// "kelva-wifi-name".
std::string ManName(const Program& program, const Verb& verb);

/// Text as troff takes it: backslashes, dashes and a dot or quote at the start of a line lose their meaning.
std::string Troff(std::string_view text);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_MAN_PAGE_H_
