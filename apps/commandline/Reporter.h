#ifndef KELVA_APPS_COMMANDLINE_REPORTER_H_
#define KELVA_APPS_COMMANDLINE_REPORTER_H_

#include <chrono>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "apps/commandline/ExitCode.h"
#include "apps/commandline/Json.h"

namespace apps {

/// The version of everything that --json prints, described in docs/json.md. New members keep the number; removing a
/// member or changing its meaning makes a new number.
inline constexpr int kJsonSchema = 1;

/// How messages are given.
struct ReportStyle {
  bool json = false;      ///< one JSON object a line
  bool quiet = false;     ///< errors only
  bool terminal = false;  ///< a person watches: progress bars
  bool colour = false;
  bool verbose = false;      ///< numbers behind an error, and what else only some people want
  bool plainErrors = false;  ///< as Program::plainErrors
};

/// The style for a descriptor: bars only on a terminal that understands them, colours unless NO_COLOR is set.
ReportStyle StyleFor(int fd, bool json, bool quiet);

/// The tool's standard error: messages and progress. May be used from several threads.
class Reporter {
 public:
  /// `program` begins each message and lives longer; `fd` stays the caller's.
  Reporter(std::string_view program, int fd, ReportStyle style) : program_(program), fd_(fd), style_(style) {}

  /// A remark; not given when quiet.
  void Note(std::string_view sentence);
  /// A question, or a remark that explains it. Given when quiet too: nobody can answer a question that is not shown.
  void Ask(std::string_view sentence);
  /// Why something did not work. Always given.
  void Error(std::string_view sentence, ExitCode code);
  /// Shows `line` in place of the last one; only on a terminal, not when quiet.
  void Overwrite(std::string_view line);
  /// Whether the camera has a command to answer from now on.
  void AwaitCamera(bool awaited);
  /// Called about once a second by a thread that does not wait for the camera. Says after five seconds of one command that
  /// the camera does not answer, in place of the line that is shown; only on a terminal, not when quiet.
  void Tick(std::chrono::steady_clock::time_point now);
  /// Passes a line of another process of this program on as it is.
  void Forward(std::string_view line);
  /// Gives an event in JSON style, unless quiet; does nothing in the other styles.
  void Event(Json members);
  /// Whether progress may be shown now: ten times a second for eyes, twice for scripts, over all transfers of a command.
  /// When true, starts the wait for the next turn.
  bool TakeProgressTurn(std::chrono::steady_clock::time_point now);
  /// Takes away what Overwrite showed.
  void Clear();
  /// Error from the thread that ends the program: waits neither for another thread nor for a blocked terminal.
  void LastWord(std::string_view sentence, ExitCode code);

  /// What Error would write, for whoever can only write bytes that are ready: a signal handler.
  std::string Line(std::string_view sentence, ExitCode code) const;

  const ReportStyle& Style() const { return style_; }

 private:
  void Remark(std::string_view sentence);
  void Write(std::string_view text);

  std::string_view program_;
  int fd_;
  ReportStyle style_;
  mutable std::mutex mutex_;
  std::chrono::steady_clock::time_point nextProgress_;
  bool lineShown_ = false;
  std::optional<std::chrono::steady_clock::time_point> asked_;  // when the command began that the camera has to answer
  bool complained_ = false;                                     // that it does not
};

/// One event in JSON style as a line: the schema's number, the event's name, the members.
std::string EventLine(std::string_view event, Json members);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_REPORTER_H_
