// The verb monitor.
#include <string>

#include "apps/camera/Session.h"
#include "apps/commandline/Failure.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

ExitCode RunMonitor(Context& context) {
  const Session camera(context, "send a line to the camera's monitor");
  const char* line = context.call.words[0].c_str();
  const bool taken = context.call.Has("char") ? camera->MonitorCmdSingleChar(line) : camera->MonitorCmd(line);
  if (!taken) {
    // The library keeps the reason of this one command to itself.
    throw Failure(ExitCode::kRefused,
                  "The camera did not accept the line; `kelva list` shows whether it is still attached, and `kelva "
                  "console` what it reports.");
  }
  return context.Result(CameraResult(camera), "");
}

constexpr Argument kArguments[] = {{"LINE", "What to send; quote a line with blanks."}};
constexpr Option kOptions[] = {
    {"char", 'c', "", "Send it as input of single characters instead of as a command line."}};
constexpr Example kExamples[] = {{"kelva monitor 'log level 3'", "Send a command line."}};

constexpr Verb kVerbs[] = {
    {"monitor", "Send a line to the camera's command monitor", kArguments, kOptions,
     R"(The camera's answer, if any, goes to its console log; read it with `kelva console`. If the camera does not
accept the line, the exit status is 7, whatever the reason.)",
     "", kExamples, RunMonitor}};

}  // namespace

std::span<const Verb> MonitorVerbs() {
  return kVerbs;
}

}  // namespace apps
