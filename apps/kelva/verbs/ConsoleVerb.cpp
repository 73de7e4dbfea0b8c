// The verb console.
#include <string>
#include <thread>

#include "apps/camera/Session.h"
#include "apps/commandline/Printable.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

using namespace std::chrono_literals;

// As it came for a file or a program; safe for a terminal.
std::string Shown(const Context& context, const std::string& text) {
  return context.out.IsTerminal() ? PrintableLines(text) : text;
}

void Give(Context& context, const std::string& text) {
  context.Event("console", Json::Object().SetBytes("text", text), Shown(context, text));
}

// Gives what there is now.
void Drain(Context& context, Camera& camera) {
  bool more = true;
  while (more) {
    context.stop.Check();
    const std::string text = camera.ConsoleLog(more);
    if (!text.empty()) Give(context, text);
    // A camera that says "more" without giving anything would be asked as fast as it can answer.
    if (text.empty() && more) std::this_thread::sleep_for(100ms);
  }
}

ExitCode RunConsole(Context& context) {
  const Session camera(context, "read the console log");
  Drain(context, *camera);
  while (context.call.Has("follow")) {
    context.stop.Check();
    std::this_thread::sleep_for(300ms);
    LetOthers(context);
    Drain(context, *camera);
  }
  return context.Result(CameraResult(camera), "");
}

constexpr Option kOptions[] = {{"follow", 'f', "", "Go on showing what the camera logs, until Ctrl-C."}};
constexpr Example kExamples[] = {
    {"kelva console > camera.log", "Keep the log."},
    {"kelva console --follow", "Watch it."},
};

constexpr Verb kVerbs[] = {
    {"console", "Show the camera's console log", kNoArguments, kOptions,
     R"(The camera hands over its log only once: what was shown is gone from the camera. On a terminal, control
characters of the log are shown as \xNN; into a file or a pipe the log goes unchanged.)",
     "events, one object a line: console (text, a piece of the log)", kExamples, RunConsole}};

}  // namespace

std::span<const Verb> ConsoleVerbs() {
  return kVerbs;
}

}  // namespace apps
