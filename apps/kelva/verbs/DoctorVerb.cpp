// The verb doctor.
#include <algorithm>
#include <string>
#include <vector>

#include "apps/camera/Attached.h"
#include "apps/camera/Explain.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Context.h"
#include "apps/doctor/Machine.h"
#include "apps/kelva/verbs/FindingText.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

using doctor::Condition;

doctor::Finding ExamineOnBus(Context& context, const AttachedCamera& camera) {
  const std::string& serial = camera.facts.serial;
  const std::string holders = context.holdersOf ? context.holdersOf(serial) : "";
  if (!holders.empty()) {
    return {Condition::kHeld, serial, "The virtual camera " + serial + " is held by " + holders + ".", "",
            "Let it finish, or close it the usual way."};
  }
  try {
    context.Doing("ask the virtual camera " + serial + " whether it is ready");
    const Session session(context, camera);
    if (session->IsReady()) {
      return {Condition::kWell, serial, "The virtual camera " + serial + " is ready to be used.", "", ""};
    }
    return {Condition::kNotAnswering, serial, "The virtual camera " + serial + " is not ready; it may be restarting.",
            "", "`kelva ready --wait` ends when it is."};
  } catch (const std::exception& error) {
    return {Condition::kNotAnswering, serial, Explain(error, context).sentence, "",
            "`kelva-vcam status` shows its faults; unplug it and plug it in again to be rid of them."};
  }
}

// A bus has no drivers, nodes and permissions. There a camera is missing, held, of the bad kind, or has a fault.
std::vector<doctor::Finding> ExamineBus(Context& context, const std::string& socket) {
  std::vector<doctor::Finding> findings;
  for (const AttachedCamera& camera : FindAttached(context.diversion)) {
    findings.push_back(ExamineOnBus(context, camera));
  }
  const int bad = CountUnusable();
  for (int i = 0; i < bad; ++i) {
    findings.push_back({Condition::kBadCamera, "", "A virtual camera is of the kind that is taken for a CD drive.", "",
                        "Unplug it, and plug it in without --type 5."});
  }
  if (!findings.empty()) return findings;
  return {{Condition::kNoDevice, "", "No camera is plugged in on the virtual bus.",
           "kelva-vcam plug --virtual " + socket + " --serial K1 --storage FOLDER", ""}};
}

ExitCode RunDoctor(Context& context) {
  const auto socket = context.call.Value("virtual");
  context.Doing(socket ? "look at the virtual bus" : "look at this machine");
  const auto findings = socket ? ExamineBus(context, *socket) : doctor::ExamineMachine();
  const bool harmless = std::all_of(findings.begin(), findings.end(), [](const doctor::Finding& finding) {
    return doctor::IsHarmless(finding.condition);
  });
  const ExitCode code = harmless ? ExitCode::kDone : ExitCode::kFailed;
  return context.Result(Json::Object().Set("findings", doctor::InJson(findings)), TextOf(findings), code);
}

constexpr Example kExamples[] = {{"kelva doctor", "Why does my camera not show up?"}};

constexpr Verb kVerbs[] = {
    {"doctor", "Find out why a camera does not work", kNoArguments, kNoOptions,
     R"(Checks from the cable upwards. Is a camera there? Has a driver taken it? On Linux, does it have a device node, and may
this user use the node? On macOS, does the driver name the maker? Does another program hold it? Does it answer? The first
problem is reported in one sentence, with the command that solves it where there is one. On Linux it also names the folders
on which cameras are mounted (`kelva mount`), and those that a killed program has left over.

With --virtual it looks at the cameras of that bus: which are there, which are held, of the bad kind or not ready.

The exit status is 0 if there is no problem, otherwise 1.)",
     "findings: array of condition (a word), harmless, serial, sentence, command, advice", kExamples, RunDoctor}};

}  // namespace

std::span<const Verb> DoctorVerbs() {
  return kVerbs;
}

}  // namespace apps
