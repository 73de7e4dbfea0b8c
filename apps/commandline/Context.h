#ifndef KELVA_APPS_COMMANDLINE_CONTEXT_H_
#define KELVA_APPS_COMMANDLINE_CONTEXT_H_

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "apps/commandline/Guard.h"
#include "apps/commandline/Json.h"
#include "apps/commandline/Output.h"
#include "apps/commandline/Parse.h"
#include "apps/commandline/Reporter.h"
#include "apps/commandline/SoFar.h"
#include "apps/commandline/StdoutDiversion.h"
#include "apps/commandline/Stop.h"

namespace apps {

class Trace;
class Turns;

/// Where programs stand in line for one camera: a node or a folder that all of them can open, and what tells this camera
/// from others there.
struct LinePlace {
  std::string path;
  std::string camera;
};

/// What a verb works with. Lives as long as the verb runs and belongs to its thread, but for the reporter and the stop.
class Context {
 public:
  const Invocation& call;
  Output& out;
  Reporter& reporter;
  const Stop& stop;
  StdoutDiversion& diversion;
  Guard* guard = nullptr;  ///< for verbs that are guarded
  SoFar* soFar = nullptr;  ///< null where nothing can end the command before its end
  Trace* trace = nullptr;  ///< null unless the exchanges with cameras are to be written (apps/trace/Trace.h)
  /// Names the processes that hold the camera with a serial number, as part of a sentence; empty when that cannot be
  /// told.
  std::function<std::string(const std::string& serial)> holdersOf;
  /// Where programs stand in line for the camera with a serial number; nothing when there is no such place.
  std::function<std::optional<LinePlace>(const std::string& serial)> lineOf;
  Turns* turns = nullptr;  ///< null unless a camera is open (apps/camera/Turns.h)

  Context(const Invocation& invocation, Output& output, Reporter& messages, const Stop& stopRequest,
          StdoutDiversion& diverted)
      : call(invocation), out(output), reporter(messages), stop(stopRequest), diversion(diverted) {}

  /// Says what is being tried, for the sentence of a failure: "read I:/X.JPG". Printable.
  void Doing(std::string what) { doing_ = std::move(what); }
  const std::string& WasDoing() const { return doing_; }
  bool Json() const { return reporter.Style().json; }
  /// Whether errors end with the numbers behind them: for scripts, and for people who ask with --verbose.
  bool ShowsCodes() const { return reporter.Style().verbose || (Json() && !reporter.Style().plainErrors); }
  /// Prints the result (members with --json, else text). Only the first call prints. `code` becomes `exit`, and the
  /// `reason` of a failure without one. Returns `code`.
  ExitCode Result(apps::Json members, std::string_view text, ExitCode code = ExitCode::kDone);
  /// One of many results, given at once: a JSON object on a line of its own, else its text.
  void Event(std::string_view event, apps::Json members, std::string_view text);

 private:
  std::string doing_;
};

/// The document that says how a command ended; `members` follow.
Json ResultDocument(std::string_view verb, ExitCode code, Json members);
/// The same as a line.
std::string ResultLine(std::string_view verb, ExitCode code, Json members);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_CONTEXT_H_
