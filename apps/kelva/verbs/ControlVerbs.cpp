// The verbs control and control set.
#include <string>

#include "apps/camera/Session.h"
#include "apps/commandline/Columns.h"
#include "apps/commandline/Failure.h"
#include "apps/kelva/verbs/Number.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

ExitCode RunGet(Context& context) {
  const Session camera(context, "read the manual controls");
  _ManualControlsState state{};
  if (!camera->GetManualControlsState(state)) {
    throw Failure(ExitCode::kFailed, "The camera gave no state of its manual controls.");
  }
  Json members = CameraResult(camera).Set("first", state.first).Set("second", state.second);
  members.Set("third", NumberOf(state.third));
  members.Set("fourth", state.fourth).Set("fifth", state.fifth).Set("sixth", state.sixth);
  return context.Result(std::move(members), Columns({{"first", std::to_string(state.first)},
                                                     {"second", std::to_string(state.second)},
                                                     {"third", Shortest(state.third)},
                                                     {"fourth", Shortest(state.fourth)},
                                                     {"fifth", Shortest(state.fifth)},
                                                     {"sixth", std::to_string(state.sixth)}}));
}

ExitCode RunSet(Context& context) {
  const auto control = static_cast<int>(ParseNumber(context.call.words[0], "the number of a control", 0, 255));
  const std::string& value = context.call.words[1];
  const Session camera(context, "set a manual control");
  if (!camera->SetManualControl(control, value)) {
    throw Failure(ExitCode::kRefused, "The camera did not accept the command.");
  }
  context.Result(CameraResult(camera).Set("control", control).Set("text_sent", false), "");
  context.reporter.Note(
      "The camera accepted the command for this control. The command carries no text, so the value itself does not "
      "reach "
      "the camera.");
  return ExitCode::kDone;
}

constexpr Argument kSet[] = {{"N", "The number of the control, 0 to 255."}, {"VALUE", "Its value, as text."}};
constexpr std::string_view kMembers =
    "first, second, sixth: whole numbers of the camera\nthird, fourth, fifth: numbers of the camera";

constexpr Example kGetExamples[] = {{"kelva control", "Show them."},
                                    {"kelva control --json", "Show them to a script."}};
constexpr Example kSetExamples[] = {{"kelva control set 3 0.5", "Send the command for control 3."}};

constexpr Verb kVerbs[] = {
    {.name = "control",
     .summary = "Show the manual controls",
     .details = "Six numbers, whose meaning the camera defines. `kelva control get` is the same command.",
     .json = kMembers,
     .examples = kGetExamples,
     .run = RunGet,
     .alias = "control get"},
    {"control set", "Send the command for a manual control, without its value", kSet, kNoOptions,
     R"(The command has no data phase: the camera learns the number of the control, but not the value. The tool says
so and ends with exit status 0.)",
     "control: its number\ntext_sent: always false", kSetExamples, RunSet},
};

}  // namespace

std::span<const Verb> ControlVerbs() {
  return kVerbs;
}

}  // namespace apps
