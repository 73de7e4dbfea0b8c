// The verb doctor.
#include <string>
#include <vector>

#include "apps/commandline/Context.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/kelva/doctor/Diagnosis.h"
#include "apps/kelva/doctor/Probe.h"
#include "apps/kelva/doctor/Survey.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

Json Members(const doctor::Finding& finding) {
  Json members = Json::Object().Set("condition", doctor::WordOf(finding.condition));
  members.Set("harmless", doctor::IsHarmless(finding.condition));
  members.SetBytes("serial", finding.serial).SetBytes("sentence", finding.sentence);
  return std::move(members.SetBytes("command", finding.command).SetBytes("advice", finding.advice));
}

std::string Paragraph(const doctor::Finding& finding) {
  std::string text = Printable(finding.sentence) + "\n";
  if (!finding.command.empty()) text += "  To mend it:  " + Printable(finding.command) + "\n";
  if (!finding.advice.empty()) text += "  " + Printable(finding.advice) + "\n";
  return text;
}

ExitCode RunDoctor(Context& context) {
  if (context.call.Has("virtual")) {
    throw Failure(ExitCode::kUsage, "`kelva doctor` looks at this machine; a virtual bus has nothing to examine.");
  }
  context.Doing("look at this machine");
  const auto findings =
      doctor::Diagnose(doctor::SurveyMachine([](const std::string& node) { return doctor::AskCamera(node); }));
  Json list = Json::Array();
  std::string text;
  bool harmless = true;
  for (const doctor::Finding& finding : findings) {
    list.Push(Members(finding));
    text += Paragraph(finding);
    harmless = harmless && doctor::IsHarmless(finding.condition);
  }
  const ExitCode code = harmless ? ExitCode::kDone : ExitCode::kFailed;
  return context.Result(Json::Object().Set("findings", std::move(list)), text, code);
}

constexpr Example kExamples[] = {{"kelva doctor", "Why does my camera not show up?"}};

constexpr Verb kVerbs[] = {
    {"doctor", "Find out why a camera does not work", kNoArguments, kNoOptions,
     R"(Checks from the cable upwards. Is a camera there? Has a driver taken it? Does it have a device node? May
this user use the node? Does another program hold it? Does it answer? The first problem is reported in one sentence,
with the command that solves it where there is one.

The exit status is 0 if there is no problem, otherwise 1.)",
     "findings: array of condition (a word), harmless, serial, sentence, command, advice", kExamples, RunDoctor}};

}  // namespace

std::span<const Verb> DoctorVerbs() {
  return kVerbs;
}

}  // namespace apps
