#ifndef KELVA_APPS_COMMANDLINE_SUPERVISOR_H_
#define KELVA_APPS_COMMANDLINE_SUPERVISOR_H_

#include <array>
#include <chrono>
#include <csignal>
#include <functional>
#include <optional>
#include <string>

#include "apps/commandline/ExitCode.h"
#include "apps/commandline/Reporter.h"
#include "apps/commandline/Stop.h"

namespace apps {

/// The signals that end the tool.
inline constexpr std::array kEndingSignals{SIGINT, SIGTERM, SIGHUP};

/// Blocks the signals that end the tool in this thread and all that it starts, and ignores
/// SIGPIPE. Call it before the first thread starts.
void TakeOverSignals();

/// What ends a command early.
struct Supervision {
  std::optional<std::chrono::milliseconds> timeout;
  /// How much of the time-out was spent before.
  std::chrono::milliseconds spent{0};
  /// How long the worker may take to stop before the process ends without it.
  std::chrono::milliseconds grace{600};
  /// What was done and what is left, for the message; asked when the worker has stopped or the grace is over. Empty when
  /// that is not known.
  std::function<std::string()> soFar = {};
  /// Called last when a signal or the time-out ended the command, with the exit code and the sentence that was given.
  /// The worker may still run.
  std::function<void(ExitCode, const std::string& sentence)> atEnd = {};
};

/// Runs `work` on a thread of its own while this thread waits for its end, a signal or the deadline. When a signal or
/// the deadline comes first, gives its sentence, asks the worker to stop and waits for `grace`; then removes the
/// temporary files and ends the process. `work` throws nothing but Stopped.
ExitCode Supervise(const std::function<ExitCode(const Stop&)>& work, const Supervision& supervision,
                   Reporter& reporter);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_SUPERVISOR_H_
