#include "apps/kelva/Tool.h"

#include <poll.h>

#include <chrono>
#include <string>

#include "apps/camera/Explain.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Help.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/Supervisor.h"
#include "apps/kelva/CameraSource.h"
#include "apps/kelva/verbs/HelpVerbs.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

constexpr std::string_view kAbortSentence =
    "The camera sent more than it had announced, which the library does not survive; nothing unfinished was kept. "
    "Repeat the command, and restart the camera if it stays.";

// Options that shape messages count even when the command line as a whole is not understood.
bool Mentions(std::span<const char* const> arguments, std::string_view option) {
  for (const std::string_view argument : arguments) {
    if (argument == option) return true;
  }
  return false;
}

Json ErrorMembers(const Outcome& outcome) {
  return Json::Object().Set("reason", WordOf(outcome.code)).Set("error", outcome.sentence);
}

ExitCode GiveError(Reporter& reporter, Output& out, std::string_view verb, const Outcome& outcome) {
  reporter.Error(outcome.sentence, outcome.code);
  if (reporter.Style().json && out.TakeEnd()) {
    try {
      out.Add(ResultLine(verb, outcome.code, ErrorMembers(outcome)));
      out.Flush();
    } catch (const Failure&) {
      // Standard output is what failed; standard error has said it.
    }
  }
  return outcome.code;
}

bool IsGuarded(const Invocation& call) {
  return call.verb->guarded && (call.verb->guardedWith.empty() || call.Has(call.verb->guardedWith));
}

class Tool {
 public:
  explicit Tool(std::span<const char* const> arguments)
      : arguments_(arguments),
        reporter_(
            2, StyleFor(2, Mentions(arguments, "--json"), Mentions(arguments, "--quiet") || Mentions(arguments, "-q"))),
        out_(diversion_.Real()) {}

  ExitCode Run() {
    try {
      call_ = Parse(AllVerbs(), arguments_);
      return Dispatch();
    } catch (const std::exception& error) {
      return GiveError(reporter_, out_, Name(), Explain(error, "start"));
    }
  }

 private:
  std::string_view Name() const { return call_.verb == nullptr ? "" : call_.verb->name; }

  ExitCode Print(const std::string& text) {
    const bool json = reporter_.Style().json;
    out_.Add(json ? ResultLine(Name(), ExitCode::kDone, Json::Object().Set("text", text)) : text);
    out_.Flush();
    return ExitCode::kDone;
  }

  ExitCode Dispatch() {
    if (call_.version) return Print("kelva " KELVA_VERSION "\n");
    if (call_.Has("help")) return Print(call_.verb == nullptr ? Overview(AllVerbs()) : HelpFor(*call_.verb));
    Supervision supervision;
    supervision.atEnd = [this](ExitCode code, const std::string& sentence) { GiveEnd({code, sentence}); };
    if (const auto timeout = call_.Value("timeout")) supervision.timeout = ParseSeconds(*timeout, "--timeout");
    if (!IsGuarded(call_)) return RunSupervised(supervision, nullptr);
    const auto start = std::chrono::steady_clock::now();
    return static_cast<ExitCode>(Guard::Run([&](Guard& guard) {
      Supervision rest = supervision;
      rest.spent = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
      return static_cast<int>(RunSupervised(rest, &guard));
    }));
  }

  ExitCode RunSupervised(const Supervision& supervision, Guard* guard) {
    PrepareForAborts();
    return Supervise([this, guard](const Stop& stop) { return Work(stop, guard); }, supervision, reporter_);
  }

  // For a command that was ended. Its worker may sit in a transfer for good, so this goes past what the worker collects,
  // and waits for nobody.
  void GiveEnd(const Outcome& outcome) {
    if (!reporter_.Style().json || !out_.TakeEnd()) return;
    pollfd ready{diversion_.Real(), POLLOUT, 0};
    constexpr int kPatienceMs = 100;
    if (::poll(&ready, 1, kPatienceMs) != 1) return;
    WriteAll(diversion_.Real(), ResultLine(Name(), outcome.code, ErrorMembers(outcome)));
  }

  void PrepareForAborts() {
    const bool json = reporter_.Style().json;
    const Outcome outcome{ExitCode::kFailed, std::string(kAbortSentence)};
    CatchAborts(reporter_.Line(outcome.sentence, outcome.code),
                json ? ResultLine(Name(), outcome.code, ErrorMembers(outcome)) : "", diversion_.Real());
  }

  // On the worker's thread.
  ExitCode Work(const Stop& stop, Guard* guard) {
    Context context(call_, out_, reporter_, stop, diversion_);
    context.guard = guard;
    context.holdersOf = [this](const std::string& serial) { return HoldersInWords(call_.Value("virtual"), serial); };
    try {
      if (!NeedsNoCamera(*call_.verb)) ChooseSource();
      return call_.verb->run(context);
    } catch (const std::exception& error) {
      return GiveError(reporter_, out_, Name(), Explain(error, context.WasDoing()));
    }
  }

  void ChooseSource() {
    ChooseCameraSource(call_.Value("virtual"), [this](const std::string& said) { reporter_.Note(Printable(said)); });
  }

  std::span<const char* const> arguments_;
  StdoutDiversion diversion_;
  Reporter reporter_;
  Output out_;
  Invocation call_;
};

}  // namespace

int RunTool(std::span<const char* const> arguments) {
  FillStandardDescriptors();
  TakeOverSignals();
  return static_cast<int>(Tool(arguments).Run());
}

}  // namespace apps
