#ifndef KELVA_APPS_COMMANDLINE_EXIT_CODE_H_
#define KELVA_APPS_COMMANDLINE_EXIT_CODE_H_

#include <string_view>

namespace apps {

/// How the tool ends. Scripts rely on these numbers; they are documented in the manual and never change their meaning.
enum class ExitCode : int {
  kDone = 0,
  kFailed = 1,
  kUsage = 2,
  kNoCamera = 3,
  kBusy = 4,
  kGone = 5,
  kPartial = 6,
  kRefused = 7,
  kTimedOut = 8,
  kInterrupted = 130,
  kReaderGone = 141,
};

/// One row of the table from which the manual and the JSON form of an error take their words.
struct ExitCodeRow {
  ExitCode code;
  std::string_view word;     ///< stable, for scripts
  std::string_view meaning;  ///< for people
};

inline constexpr ExitCodeRow kExitCodes[] = {
    {ExitCode::kDone, "done", "The work is done."},
    {ExitCode::kFailed, "failed", "It failed; the message says why."},
    {ExitCode::kUsage, "usage", "The command line is wrong, or several cameras are attached and none was chosen."},
    {ExitCode::kNoCamera, "no-camera", "No camera is attached, or none has the given serial number."},
    {ExitCode::kBusy, "busy", "The camera is there, but another program holds it or it cannot be opened."},
    {ExitCode::kGone, "gone", "The camera went away while the command ran."},
    {ExitCode::kPartial, "partial", "Some of the work is done; every part that failed was reported."},
    {ExitCode::kRefused, "refused", "The camera refused the command."},
    {ExitCode::kTimedOut, "timed-out", "The time given with --timeout, or the camera's own, ran out."},
    {ExitCode::kInterrupted, "interrupted", "A signal (Ctrl-C) ended it."},
    {ExitCode::kReaderGone, "reader-gone",
     "Whoever reads standard output has closed it, as `head` does; the work ended there, without a word."},
};

/// The stable word of an exit code, "failed" for a number outside the table.
constexpr std::string_view WordOf(ExitCode code) {
  for (const ExitCodeRow& row : kExitCodes) {
    if (row.code == code) return row.word;
  }
  return "failed";
}

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_EXIT_CODE_H_
