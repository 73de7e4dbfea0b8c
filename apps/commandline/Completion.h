#ifndef KELVA_APPS_COMMANDLINE_COMPLETION_H_
#define KELVA_APPS_COMMANDLINE_COMPLETION_H_

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "apps/commandline/Program.h"

namespace apps {

/// The shells that completions are made for, separated by blanks.
inline constexpr std::string_view kShells = "bash zsh fish";

/// The completion script of a program for a shell, or nothing for a shell that is not known. The script knows no
/// command: at each Tab it runs `PROGRAM __complete SHELL WORD...` and offers what Offers returns. It evaluates nothing
/// of that, because serial numbers come from cameras.
std::optional<std::string> Completion(const Program& program, std::string_view shell);

/// What may stand in the place of the last word: one candidate a line, with a tab and its meaning for zsh and fish. The
/// lines ":files" and ":folders" ask the shell for its own completion of paths. Words come from bash as they were
/// typed, quotes included, and from the others as the shell understands them.
std::string Offers(const Program& program, std::string_view shell, std::span<const char* const> words);

/// A word as bash would read it, without its quotes and backslashes. A quote may still be open. Nothing is evaluated.
std::string Unquoted(std::string_view word);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_COMPLETION_H_
