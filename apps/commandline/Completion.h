#ifndef KELVA_APPS_COMMANDLINE_COMPLETION_H_
#define KELVA_APPS_COMMANDLINE_COMPLETION_H_

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/commandline/Program.h"

namespace apps {

/// The shells that completions are made for, separated by blanks.
inline constexpr std::string_view kShells = "bash zsh fish";

/// A completion script for a shell, or nothing for one that is not known.
std::optional<std::string> Completion(const Program& program, std::string_view shell);

std::string BashCompletion(const Program& program);
std::string ZshCompletion(const Program& program);
std::string FishCompletion(const Program& program);

/// A text as one word of a POSIX shell: in single quotes.
std::string Quoted(std::string_view text);

/// The first words of all names, each once, in the order of the table.
std::vector<std::string_view> FirstWords(std::span<const Verb> table);
/// The second words of the names that begin with `first`.
std::vector<std::string_view> SecondWords(std::span<const Verb> table, std::string_view first);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_COMPLETION_H_
