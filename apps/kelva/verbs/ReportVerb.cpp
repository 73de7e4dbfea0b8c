// The verb report.
#include <sys/utsname.h>

#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "apps/camera/Battery.h"
#include "apps/camera/Clock.h"
#include "apps/camera/Explain.h"
#include "apps/camera/Information.h"
#include "apps/camera/PictureList.h"
#include "apps/camera/ReadLimit.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/Progress.h"
#include "apps/doctor/Machine.h"
#include "apps/files/SafeName.h"
#include "apps/files/StoreFile.h"
#include "apps/files/Tar.h"
#include "apps/kelva/verbs/FindingText.h"
#include "apps/kelva/verbs/Verbs.h"
#include "apps/trace/Trace.h"

namespace apps {
namespace {

std::string HostFacts() {
  utsname host{};
  ::uname(&host);
  return std::string("tool: kelva " KELVA_VERSION "\nsystem: ") + host.sysname + " " + host.release + " " +
         host.machine + "\ntime: " + HostTimeText(true, std::chrono::system_clock::now()) + "\n";
}

std::string Console(Context& context, Camera& camera) {
  std::string log;
  bool more = true;
  // A camera whose log never ends must not fill the memory.
  constexpr std::size_t kMost = 16U << 20;
  while (more && log.size() < kMost) {
    context.stop.Check();
    const std::string piece = camera.ConsoleLog(more);
    if (piece.empty()) break;
    log += piece;
  }
  return log;
}

std::string CameraFacts(Camera& camera, const RegistryCamera& facts) {
  std::string text = "serial: " + Printable(facts.serial) + "\nproduct: " + Printable(facts.product) +
                     "\nrevision: " + Printable(facts.revision) + "\ndriver: " + facts.driver + "\n";
  _VscCdbCameraInformation record{};
  if (!camera.CameraInformation(record)) {
    throw Failure(ExitCode::kFailed, "The camera gave no information about itself.");
  }
  const std::vector<std::string> texts = InformationTexts(record);
  for (const std::string& line : texts) text += "information: " + Printable(line) + "\n";
  if (texts.empty()) text += "information, in hexadecimal:\n" + InformationDump(record);
  text += "battery: " + LevelText(camera.BatteryLevel()) + "\n";
  text += "completed commands: " + std::to_string(camera.GetDoneCmdCount()) + "\n";
  return text + "pictures: " + std::to_string(ReadPictures(camera).size()) + "\n";
}

// Gathers what it can; what fails is said in the archive too.
class Report {
 public:
  explicit Report(Context& context) : context_(context), tar_(static_cast<long long>(std::time(nullptr))) {}

  void Add(const std::string& name, std::string_view bytes) {
    tar_.Add("kelva-report/" + name, bytes);
    ++files_;
  }

  void Part(const std::string& doing, const std::function<void()>& work) {
    context_.Doing(doing);
    LetOthers(context_);
    try {
      work();
    } catch (const std::exception& error) {
      const Outcome outcome = Explain(error, doing, true);
      if (outcome.code == ExitCode::kGone) throw;
      context_.reporter.Error(outcome.sentence, ExitCode::kPartial);
      errors_ += outcome.sentence + "\n";
    }
  }

  void AddAll(const std::string& folder, const std::vector<_Sha1obj>& files) {
    for (const _Sha1obj& file : files) {
      const std::string name = SafeName(file.name.substr(file.name.rfind('\\') + 1));
      Add(folder + "/" + name, {file.data.data(), file.data.size()});
    }
  }

  std::string Finish() {
    if (!errors_.empty()) Add("errors.txt", errors_);
    return tar_.Finish();
  }
  bool IsWhole() const { return errors_.empty(); }
  int Files() const { return files_; }

 private:
  Context& context_;
  Tar tar_;
  std::string errors_;
  int files_ = 0;
};

void Gather(Context& context, const Session& camera, Report& report) {
  Progress progress(context.reporter, context.stop, "report", 0);
  report.Add("host.txt", HostFacts());
  report.Part("read the camera's state", [&] { report.Add("camera.txt", CameraFacts(*camera, camera.Facts())); });
  report.Part("read the console log", [&] { report.Add("console.txt", Console(context, *camera)); });
  report.Part("read the crash logs", [&] {
    ReadLimit limit = ReadLimit::OfBundle("the crash logs", kLargestBundle, Progress::Callback, progress);
    report.AddAll("crash", camera->ReadCrashLogs(ReadLimit::Check, &limit, false, true));
  });
  report.Part("read the calibration files", [&] {
    ReadLimit limit = ReadLimit::OfBundle("the calibration files", kLargestBundle, Progress::Callback, progress);
    report.AddAll("calibration", camera->ReadCalibration(ReadLimit::Check, &limit, true));
  });
}

ExitCode RunReport(Context& context) {
  const std::string path = context.call.words[0];
  const std::size_t slash = path.rfind('/');
  const std::string name = path.substr(slash + 1);
  if (name.empty()) throw Failure(ExitCode::kUsage, "The report is a file; name it, for example report.tar.");
  const TargetFolder folder = TargetFolder::Open(slash == std::string::npos ? "." : path.substr(0, slash + 1));
  if (folder.Has(name)) {
    // Said before the camera is asked: it hands its console log over only once.
    throw Failure(ExitCode::kFailed, "There is a " + Printable(folder.PathOf(name)) +
                                         " already, and it was kept; choose another name for the report.");
  }
  std::string findings;
  if (!context.call.Value("virtual")) {
    context.Doing("look at this machine");
    // Before the session, because this asks the camera too, and a camera answers one program at a time.
    findings = TextOf(doctor::ExamineMachine());
  }
  const Session camera(context, "open the camera");
  Report report(context);
  Gather(context, camera, report);
  if (!findings.empty()) report.Add("doctor.txt", findings);
  // What is older than this is in the file alone.
  constexpr std::size_t kMostTrace = 64U << 20;
  if (context.trace != nullptr) report.Add("trace.jsonl", context.trace->Contents(kMostTrace));
  StoreNew(folder, name, report.Finish(), Readers::kOwner);
  const ExitCode code = report.IsWhole() ? ExitCode::kDone : ExitCode::kPartial;
  context.Result(CameraResult(camera).SetBytes("file", path).Set("files", report.Files()), "", code);
  context.reporter.Note("The report is in " + Printable(path) +
                        ", and only you may read it. It holds the camera's state, console log, crash logs and "
                        "calibration, and facts about this computer; look through it before you send it to anyone.");
  return code;
}

constexpr Argument kArguments[] = {{"FILE", "The archive to write, a tar file.", Argument::Count::kOne, Offer::kFile}};
constexpr Example kExamples[] = {{"kelva report camera.tar", "Gather what someone who helps you needs."}};

constexpr Verb kVerbs[] = {
    {"report", "Gather what helps to find a fault into one archive", kArguments, kNoOptions,
     R"(The archive holds the camera's information, battery level and counters, its console log, crash logs and
calibration files, facts about this computer and what `kelva doctor` finds on it. It holds no pictures and no passphrases, but whatever the camera wrote into its logs. Only
you may read the archive. Of the console log 16 MiB are read at most, of the crash logs and of the calibration files
64 MiB each. Crash logs stay on the camera. The camera hands over its console log only once, so afterwards only the archive has it. A part that fails is
reported, and the rest goes on. With --trace FILE the archive also holds that trace.)",
     "file: the archive\nfiles: how many are in it", kExamples, RunReport}};

}  // namespace

std::span<const Verb> ReportVerbs() {
  return kVerbs;
}

}  // namespace apps
