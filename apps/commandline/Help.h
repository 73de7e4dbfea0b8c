#ifndef KELVA_APPS_COMMANDLINE_HELP_H_
#define KELVA_APPS_COMMANDLINE_HELP_H_

#include <string>
#include <string_view>

#include "apps/commandline/Program.h"

namespace apps {

/// All verbs with their summaries, and the common options.
std::string Overview(const Program& program);

/// Everything about one verb, for a terminal of 80 columns.
std::string HelpFor(const Program& program, const Verb& verb);

/// "kelva get [OPTIONS] PATH..."
std::string UsageLine(const Program& program, const Verb& verb);

/// The command of an example, with the program's name in the place of PROGRAM.
std::string CommandOf(const Program& program, const Example& example);

/// "-s, --serial SERIAL"
std::string OptionHead(const Option& option);

/// Text broken into lines of at most `width` columns, each after `indent` blanks. A line feed
/// counts as a blank; an empty line separates paragraphs.
std::string Wrapped(std::string_view text, std::size_t indent, std::size_t width = 80);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_HELP_H_
