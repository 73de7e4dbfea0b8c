#ifndef KELVA_APPS_COMMANDLINE_RUN_H_
#define KELVA_APPS_COMMANDLINE_RUN_H_

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Json.h"
#include "apps/commandline/Output.h"
#include "apps/commandline/Parse.h"
#include "apps/commandline/Program.h"
#include "apps/commandline/Reporter.h"

namespace apps {

/// The style of messages that a command line asks for. --json and --quiet count even when the rest is not understood.
ReportStyle StyleFor(int fd, std::span<const char* const> arguments);

/// What --version or --help prints; nothing when the verb is to run.
std::optional<std::string> Answer(const Invocation& call);

/// Prints a text as a command's whole result.
ExitCode GiveText(Output& out, const ReportStyle& style, const Invocation& call, const std::string& text);

/// The members of a JSON result that say why a command failed.
Json ErrorMembers(const Outcome& outcome);

/// Reports a failure, in JSON style also as the command's result, with `more` members. Returns the outcome's code.
ExitCode GiveError(Reporter& reporter, Output& out, const Invocation& call, const Outcome& outcome,
                   Json more = Json::Object());

/// Answers `PROGRAM __complete SHELL WORD...`, the question of the completion scripts, and returns true; returns false
/// for any other command line. No help mentions it, because only scripts ask it.
bool AnswerShell(const Program& program, std::span<const char* const> arguments);

/// A whole program without supervision: reads the command line and runs its verb on this thread. Standard output leads
/// into memory meanwhile (see StdoutDiversion), so verbs print through their context. Failures and other exceptions
/// become messages. Returns the exit status.
int RunProgram(const Program& program, std::span<const char* const> arguments);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_RUN_H_
