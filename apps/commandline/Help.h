#ifndef KELVA_APPS_COMMANDLINE_HELP_H_
#define KELVA_APPS_COMMANDLINE_HELP_H_

#include <span>
#include <string>
#include <string_view>

#include "apps/commandline/Verb.h"

namespace apps {

/// All verbs with their summaries, and the common options.
std::string Overview(std::span<const Verb> table);

/// Everything about one verb, for a terminal of 80 columns.
std::string HelpFor(const Verb& verb);

/// "kelva get [OPTIONS] PATH..."
std::string UsageLine(const Verb& verb);

/// "-s, --serial SERIAL"
std::string OptionHead(const Option& option);

/// Text broken into lines of at most `width` columns, each after `indent` blanks. Paragraphs are kept apart.
std::string Wrapped(std::string_view text, std::size_t indent, std::size_t width = 80);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_HELP_H_
