// The verb survey.
#include <unistd.h>

#include <optional>
#include <string>

#include "apps/camera/Attached.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/StoreFile.h"
#include "apps/kelva/survey/Survey.h"
#include "apps/kelva/verbs/PrivateFiles.h"
#include "apps/kelva/verbs/Verbs.h"
#include "apps/trace/Trace.h"

namespace apps {
namespace {

void Confirm(Context& context, const std::string& folder) {
  if (context.call.Has("yes")) return;
  if (::isatty(STDIN_FILENO) != 1) {
    throw Failure(ExitCode::kUsage, "A survey is confirmed on a terminal, or with --yes; nothing was sent.");
  }
  context.reporter.Ask(
      "The survey asks the camera about itself and reads its lists and one of its pictures. It changes nothing on "
      "the camera and keeps no picture. What it learns goes into " +
      Printable(folder) + ".");
  std::string answer;
  context.reporter.Ask("Begin? Type yes and press Enter:");
  for (char c = 0; ::read(STDIN_FILENO, &c, 1) == 1 && c != '\n';) answer += c;
  if (answer != "yes") throw Failure(ExitCode::kFailed, "The survey was not confirmed; nothing was sent.");
}

TargetFolder NewFolder(const std::string& path) {
  TargetFolder folder = TargetFolder::OpenOrMake(path);
  for (const char* name : {"survey.json", "summary.txt", "trace.jsonl", "information.bin"}) {
    if (!folder.Has(name)) continue;
    throw Failure(ExitCode::kFailed,
                  "There is a survey in " + Printable(path) + " already, and it was kept; choose another folder.");
  }
  return folder;
}

ExitCode RunSurvey(Context& context) {
  const std::string& path = context.call.words[0];
  const AttachedCamera chosen = Choose(FindAttached(context.diversion), WantedSerial(context.call.Value("serial")));
  Confirm(context, path);
  const PrivateFiles privately;
  const TargetFolder folder = NewFolder(path);
  const bool standIns = context.call.Has("private");
  Trace trace({folder.PathOf("trace.jsonl"), standIns}, *context.call.program, context.call.Name(),
              [&](const std::string& sentence) { context.reporter.Note(sentence); });
  const Session session(context, chosen);
  AttachedCamera attached = session.Attached();
  attached.camera = trace.Around(attached.camera, DeviceOf(attached.facts));
  survey::Survey survey(context, folder, attached, standIns);
  const std::optional<Outcome> ended = survey.Run();
  StoreNew(folder, "summary.txt", survey.Summary(), Readers::kOwner);
  StoreNew(folder, "survey.json", survey.Members().Text() + "\n", Readers::kOwner);
  if (ended) throw Failure(ended->code, ended->sentence);
  const ExitCode code = survey.IsWhole() ? ExitCode::kDone : ExitCode::kPartial;
  context.Result(CameraResult(session).SetBytes("folder", path).Merge(survey.Members()), survey.Summary(), code);
  context.reporter.Note("The survey is in " + Printable(path) +
                        ", and only you may read it. It holds no picture; look through it "
                        "before you send it to anyone.");
  return code;
}

constexpr Argument kArguments[] = {{"DIR", "The folder to write, a new one.", Argument::Count::kOne, Offer::kFolder}};
constexpr Option kOptions[] = {
    {"yes", 'y', "", "Begin without asking."},
    {"private", 0, "", "Put stand-ins in place of serial number and network name in all files."},
};
constexpr Example kExamples[] = {{"kelva survey first-contact", "Learn what a camera says, in a minute."}};

constexpr Verb kVerbs[] = {
    {"survey", "Learn what a camera says that nobody here has seen", kArguments, kOptions,
     R"(Much of what a camera sends is its own to define: its clock, its battery's unit, its information record, and half of
its picture catalogue. This project assumes something of each. The survey says which assumptions hold for your camera,
and writes what is needed to mend the others: the records as bytes, the head of the catalogue, two listings, how fast it
is in chunks of 512 bytes to 64 KiB, and a trace of it all.

It only asks and reads. It changes nothing on the camera, and leaves the console log alone, which a camera hands over
only once. It reads one picture and keeps none of it. Only you may read the files.

If the camera goes away or a part fails, the files hold what was learnt until then.)",
     R"(folder: where it is
survey: the version of the members below, which survey.json has too: 1
product, revision: of the camera
assumptions: array of name, holds (true, false, or null if there was no occasion to tell) and seen (in words)
timing: array of chunk (bytes), reads and median_us
failed: array of sentences)",
     kExamples, RunSurvey}};

}  // namespace

std::span<const Verb> SurveyVerbs() {
  return kVerbs;
}

}  // namespace apps
