// The tool from its arguments to the exit status.
#include "apps/tool/Tool.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "apps/camera/Attached.h"
#include "apps/camera/CameraWords.h"
#include "apps/camera/Explain.h"
#include "apps/commandline/Aborts.h"
#include "apps/commandline/Become.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Discretion.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/Run.h"
#include "apps/commandline/Supervisor.h"
#include "apps/tool/CameraSource.h"
#include "apps/tool/HandOver.h"
#include "apps/trace/Trace.h"
#include "base/SendAll.h"

namespace apps {
namespace {

constexpr std::string_view kAbortSentence =
    "The camera sent more than it announced, so the command had to end; no unfinished file was kept. Repeat the "
    "command; "
    "if it happens again, restart the camera.";

// The bus that the environment names; empty without one.
std::string BusAround() {
  const char* variable = std::getenv("KELVA_VIRTUAL");
  return variable == nullptr ? "" : variable;
}

// The command line, with the bus of the environment where it names none itself.
Invocation WithBus(Invocation call) {
  if (!call.Has("virtual") && !BusAround().empty()) call.Add("virtual", BusAround());
  return call;
}

std::vector<std::string> AttachedSerials(const Invocation& call) {
  ChooseCameraSource(WithBus(call).Value("virtual"), [](const std::string&) {});
  StdoutDiversion diversion;
  std::vector<std::string> serials;
  for (const AttachedCamera& camera : FindAttached(diversion)) serials.push_back(SerialWord(camera.facts));
  return serials;
}

std::vector<std::string> WordsFor(Camera& camera, Offer offer, const std::string& typed) {
  if (offer == Offer::kPicture) return PicturesBeginning(camera, typed);
  return offer == Offer::kPictureFolder ? PictureFolders(camera) : PathsBeginning(camera, typed);
}

// Ends with the process: nobody waits longer for a line that is being typed.
constexpr unsigned kPatienceOfAShell = 3;

std::vector<std::string> CameraWords(const Invocation& call, Offer offer, const std::string& typed) {
  ::alarm(kPatienceOfAShell);
  ChooseCameraSource(WithBus(call).Value("virtual"), [](const std::string&) {});
  StdoutDiversion diversion;
  const AttachedCamera chosen = Choose(FindAttached(diversion), WantedSerial(call.Value("serial")));
  if (!chosen.camera->Open()) return {};
  std::vector<std::string> words = WordsFor(*chosen.camera, offer, typed);
  chosen.camera->Close();
  return words;
}

// The program, with what needs a source of cameras.
Program WithCameras(Program program) {
  program.serials = AttachedSerials;
  program.cameraWords = CameraWords;
  return program;
}

// A shell asks what to offer for a line that means a virtual bus.
bool IsShellOnBus(std::span<const char* const> arguments) {
  const bool isShell = !arguments.empty() && arguments.front() == std::string_view("__complete");
  return isShell && (!BusAround().empty() || std::any_of(arguments.begin(), arguments.end(), [](std::string_view word) {
           return word.starts_with("--virtual");
         }));
}

bool IsGuarded(const Invocation& call) {
  return call.verb->guarded && (call.verb->guardedWith.empty() || call.Has(call.verb->guardedWith));
}

// What the command line or the environment says of a trace.
std::optional<Trace::Wanted> WantedTrace(const Invocation& call) {
  const char* variable = std::getenv("KELVA_TRACE");
  std::optional<std::string> path = call.Value("trace");
  if (!path && variable != nullptr && *variable != '\0') path = variable;
  if (path) return Trace::Wanted{*path, call.Has("trace-private")};
  if (!call.Has("trace-private")) return std::nullopt;
  throw Failure(ExitCode::kUsage, "--trace-private goes with --trace FILE or KELVA_TRACE; there is no trace without.");
}

ReportStyle StyleOf(const Program& program, std::span<const char* const> arguments) {
  ReportStyle style = StyleFor(STDERR_FILENO, arguments);
  style.plainErrors = program.plainErrors;
  return style;
}

class Tool {
 public:
  Tool(const Program& program, std::span<const char* const> arguments)
      : program_(program),
        arguments_(arguments),
        reporter_(program.name, STDERR_FILENO, StyleOf(program, arguments)),
        out_(diversion_.Real()) {}

  ExitCode Run() {
    try {
      call_ = WithBus(Parse(program_, arguments_));
      return Dispatch();
    } catch (const ReaderGone&) {
      return ExitCode::kReaderGone;
    } catch (const std::exception& error) {
      return GiveDiscreetly(Explain(error, "start"));
    }
  }

 private:
  ExitCode Dispatch() {
    if (const auto text = Answer(call_)) return GiveText(out_, reporter_.Style(), call_, *text);
    if (call_.Has("virtual")) {
      const std::string reason = HandOver(program_, arguments_, diversion_.Real());
      if (!reason.empty()) throw Failure(ExitCode::kFailed, reason);
    }
    if (!call_.verb->doneBy.empty()) throw Failure(ExitCode::kFailed, BecomeDoer());
    OpenTrace();
    Supervision supervision;
    supervision.atEnd = [this](ExitCode code, const std::string& sentence) {
      Trace::CutOff();
      GiveEnd({code, sentence});
    };
    // The processes of other cameras have the usual grace, and this one tells what they did.
    if (call_.Has("all")) supervision.grace += std::chrono::milliseconds(250);
    if (const auto timeout = call_.Value("timeout")) supervision.timeout = ParseSeconds(*timeout, "--timeout");
    if (!IsGuarded(call_)) return RunSupervised(supervision, nullptr);
    const auto start = std::chrono::steady_clock::now();
    const auto work = [&](Guard& guard) {
      Supervision rest = supervision;
      rest.spent = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
      return static_cast<int>(RunSupervised(rest, &guard));
    };
    return static_cast<ExitCode>(Guard::Run(work, [this](const std::string& sentence) { reporter_.Note(sentence); }));
  }

  // Returns only when that fails, with the reason.
  std::string BecomeDoer() const {
    const std::string reason = Become(call_.verb->doneBy, program_.name, arguments_, diversion_.Real());
    return reason + "; install the package " + std::string(call_.verb->doneBy) + ".";
  }

  // Before any other process is made, so that all of them add to one file.
  void OpenTrace() {
    if (FindVerb(HelpVerbs(), call_.Name()) != nullptr) return;
    if (const auto wanted = WantedTrace(call_)) {
      trace_.emplace(*wanted, program_, call_.Name(),
                     [this](const std::string& sentence) { reporter_.Note(Said(sentence)); });
    }
  }

  ExitCode RunSupervised(Supervision supervision, Guard* guard) {
    PrepareForAborts();
    supervision.soFar = [this] { return soFar_.Ask().value_or(SoFar::Done{}).words; };
    return Supervise([this, guard](const Stop& stop) { return Work(stop, guard); }, supervision, reporter_);
  }

  std::string Said(std::string sentence) const { return Discreet(std::move(sentence), program_, arguments_); }
  ExitCode GiveDiscreetly(const Outcome& outcome) {
    const std::optional<SoFar::Done> done = soFar_.Ask();
    return GiveError(reporter_, out_, call_, {outcome.code, Said(outcome.sentence)},
                     done ? done->members : Json::Object());
  }

  // For a command that was ended. Its worker may sit in a transfer for good, so this writes without the worker's output
  // buffer and without waiting.
  void GiveEnd(const Outcome& outcome) {
    if (!reporter_.Style().json || !out_.TakeEnd()) return;
    pollfd ready{diversion_.Real(), POLLOUT, 0};
    constexpr int kPatienceMs = 100;
    if (::poll(&ready, 1, kPatienceMs) != 1) return;
    base::WriteAll(diversion_.Real(), ResultLine(call_.Name(), outcome.code, EndMembers(outcome)));
  }

  Json EndMembers(const Outcome& outcome) const {
    Json members = ErrorMembers(outcome);
    const std::optional<SoFar::Done> done = soFar_.Ask();
    return done ? std::move(members).Merge(done->members) : members;
  }

  void PrepareForAborts() {
    const bool json = reporter_.Style().json;
    const Outcome outcome{ExitCode::kFailed, std::string(kAbortSentence)};
    CatchAborts(reporter_.Line(outcome.sentence, outcome.code),
                json ? ResultLine(call_.Name(), outcome.code, ErrorMembers(outcome)) : "", diversion_.Real());
  }

  // On the worker's thread.
  ExitCode Work(const Stop& stop, Guard* guard) {
    Context context(call_, out_, reporter_, stop, diversion_);
    context.guard = guard;
    context.soFar = &soFar_;
    context.trace = trace_ ? &*trace_ : nullptr;
    context.holdersOf = [this](const std::string& serial) { return HoldersInWords(call_.Value("virtual"), serial); };
    context.lineOf = [this](const std::string& serial) { return LineOf(call_.Value("virtual"), serial); };
    try {
      if (FindVerb(HelpVerbs(), call_.Name()) == nullptr) ChooseSource();
      return call_.verb->run(context);
    } catch (const std::exception& error) {
      return GiveDiscreetly(Explain(error, context));
    }
  }

  void ChooseSource() {
    ChooseCameraSource(call_.Value("virtual"),
                       [this](const std::string& said) { reporter_.Note(Said(Printable(said))); });
  }

  const Program& program_;
  std::span<const char* const> arguments_;
  StdoutDiversion diversion_;
  Reporter reporter_;
  Output out_;
  Invocation call_;
  std::optional<Trace> trace_;
  SoFar soFar_;
};

}  // namespace

int RunTool(const Program& verbs, std::span<const char* const> arguments) {
  FillStandardDescriptors();
  const Program program = WithCameras(verbs);
  // Nobody reads a reason while a line is being typed.
  if (IsShellOnBus(arguments)) HandOver(program, arguments, STDOUT_FILENO);
  if (AnswerShell(program, arguments)) return 0;
  TakeOverSignals();
  return static_cast<int>(Tool(program, arguments).Run());
}

}  // namespace apps
