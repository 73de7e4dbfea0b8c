// `kelva sync --all`: every attached camera at once.
#include "apps/kelva/verbs/SyncAll.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <deque>
#include <memory>
#include <set>
#include <sstream>
#include <utility>
#include <vector>

#include "apps/camera/Attached.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/Words.h"
#include "apps/files/SafeName.h"
#include "apps/files/TargetFolder.h"
#include "apps/import/SyncSummary.h"
#include "apps/kelva/verbs/Consent.h"
#include "apps/kelva/verbs/OwnJson.h"
#include "apps/kelva/verbs/ToolRun.h"

namespace apps {
namespace {

using namespace std::chrono_literals;

// What each process must not get: it has a camera, its own messages come here, and this process watches the time.
constexpr std::array<std::string_view, 5> kNotHandedOn = {"all", "serial", "json", "timeout", "yes"};

std::vector<std::string> OptionsOf(const Invocation& call) {
  std::vector<std::string> words;
  const auto add = [&](const Option& option) {
    const bool kept = std::find(kNotHandedOn.begin(), kNotHandedOn.end(), option.name) != kNotHandedOn.end();
    if (kept || !call.Has(option.name)) return;
    const std::string name = "--" + std::string(option.name);
    if (option.value.empty()) return words.push_back(name);
    for (const std::string& value : call.Values(option.name)) words.insert(words.end(), {name, value});
  };
  for (const Option& option : call.verb->options) add(option);
  for (const Option& option : call.program->options) add(option);
  return words;
}

std::vector<std::string> AttachedSerials(Context& context) {
  const std::vector<AttachedCamera> attached = FindAttached(context.diversion);
  if (attached.empty()) Choose({}, std::nullopt);  // says that there is none
  std::set<std::string> serials;
  for (const AttachedCamera& camera : attached) {
    const std::string& serial = camera.facts.serial;
    if (serial.empty()) {
      throw Failure(ExitCode::kFailed,
                    "A camera without a serial number is attached, and --all could not tell it from others; sync the "
                    "cameras one by one.");
    }
    if (!serials.insert(serial).second) {
      throw Failure(ExitCode::kFailed, "Two cameras have the serial number " + Printable(serial) +
                                           "; plug one of them out and sync them one by one.");
    }
  }
  return {serials.begin(), serials.end()};
}

constexpr std::string_view kNoWord =
    "its process ended without a result, so what it did is not known; run the same command again.";

// One camera's part.
struct Part {
  std::string serial;
  std::string folder;
  bool failed = false;
  ExitCode code = ExitCode::kFailed;
  std::string document = {};  ///< the result that its process gave
  SyncTotals totals = {};
  unsigned long long files = 0;  ///< so far
  unsigned long long of = 0;
  std::string phase = {};
  std::unique_ptr<ToolRun> run = {};  // last: what it gives goes to the others
};

SyncTotals TotalsIn(const std::string& document) {
  SyncTotals totals;
  for (const SyncCount& count : kSyncCounts) totals.*count.value = NumberIn(document, count.name).value_or(0);
  totals.expected = totals.stored + NumberIn(document, "left").value_or(0);
  return totals;
}

void Add(SyncTotals& sum, const SyncTotals& one) {
  for (const SyncCount& count : kSyncCounts) sum.*count.value += one.*count.value;
  sum.expected += one.expected;
}

class All {
 public:
  All(Context& context, const std::vector<std::string>& serials) : context_(context) {
    // A preview in words is what each process prints; all else is read from its JSON.
    asText_ = context.call.Has("dry-run") && !context.Json();
    for (const std::string& serial : serials) {
      parts_.push_back({serial, context.call.words[0] + "/" + SafeName(serial)});
    }
  }

  void Run() {
    std::vector<std::string> options = OptionsOf(context_.call);
    if (!asText_) options.emplace_back("--json");
    for (Part& part : parts_) Start(part, options);
    while (std::any_of(parts_.begin(), parts_.end(), [](const Part& part) { return part.run != nullptr; })) {
      if (context_.stop.Requested()) Stop();
      ReadAll(100ms);
    }
    context_.reporter.Clear();
  }

  ExitCode Give() const {
    const ExitCode code = Code();
    const auto well = std::count_if(parts_.begin(), parts_.end(), [](const Part& part) { return !part.failed; });
    const std::string start = std::to_string(well) + " of " + Counted(parts_.size(), "camera") + ": ";
    Json members = context_.call.Has("dry-run") ? PreviewMembers() : SyncMembers(Sum(), Results());
    return context_.Result(
        std::move(members),
        asText_ ? "" : start + SyncInWords(Sum(), code != ExitCode::kDone, context_.call.Has("since")), code);
  }

 private:
  void Start(Part& part, const std::vector<std::string>& options) {
    std::vector<std::string> words = {"sync", "--serial", part.serial};
    words.insert(words.end(), options.begin(), options.end());
    words.insert(words.end(), {"--", part.folder});
    part.run = std::make_unique<ToolRun>(
        words, [this, &part](std::string_view line) { Output(part, line); },
        [this, &part](std::string_view line) { Message(part, line); });
  }

  // Gives those who stop a moment: this process does not live much longer.
  [[noreturn]] void Stop() {
    for (const Part& part : parts_) {
      if (part.run != nullptr) part.run->AskToStop();
    }
    const auto until = std::chrono::steady_clock::now() + 750ms;
    const auto runs = [](const Part& part) { return part.run != nullptr; };
    while (std::any_of(parts_.begin(), parts_.end(), runs) && std::chrono::steady_clock::now() < until) ReadAll(20ms);
    for (const Part& part : parts_) {
      if (part.run != nullptr) context_.reporter.Error(Of(part) + std::string(kNoWord), part.code);
    }
    if (context_.soFar != nullptr) {
      context_.soFar->Tell([sum = Sum(), results = Results()] { return SyncSoFar(sum, results); });
    }
    throw Stopped();
  }

  void ReadAll(std::chrono::milliseconds patience) {
    std::vector<pollfd> watched;
    for (const Part& part : parts_) {
      if (part.run != nullptr) part.run->AddTo(watched);
    }
    ::poll(watched.data(), watched.size(), static_cast<int>(patience.count()));
    for (Part& part : parts_) {
      if (part.run == nullptr) continue;
      part.run->Read();
      if (!part.run->IsOpen()) Finish(part);
    }
    ShowProgress();
  }

  void Finish(Part& part) {
    const int status = part.run->Wait();
    part.run.reset();
    constexpr int kSignals = 128;
    part.failed = status != 0;
    part.code = status > kSignals ? ExitCode::kFailed : static_cast<ExitCode>(status);
    if (part.document.empty() && !asText_) {
      context_.reporter.Error(Of(part) + std::string(kNoWord), part.code);
    }
    part.totals = TotalsIn(part.document);
    if (asText_ || context_.Json()) return;
    const bool didNothing = part.totals.stored + part.totals.known + part.totals.failed + part.totals.deleted == 0;
    if (part.failed && didNothing) return;  // its error says all
    context_.reporter.Clear();
    std::istringstream lines(SyncInWords(part.totals, part.failed, context_.call.Has("since")));
    for (std::string line; std::getline(lines, line);) context_.out.Add(Of(part) + line + "\n");
    context_.out.Flush();
  }

  void Output(Part& part, std::string_view line) {
    if (asText_) {
      context_.reporter.Clear();
      context_.out.Add(Of(part) + std::string(line) + "\n");
    } else if (!TextIn(line, "event")) {
      part.document = line;
      return;
    } else if (context_.Json()) {
      context_.out.Add(WithText(line, "serial", part.serial) + "\n");
    }
    context_.out.Flush();
  }

  void Message(Part& part, std::string_view line) {
    if (context_.Json()) return context_.reporter.Forward(WithText(line, "serial", part.serial));
    constexpr std::string_view kStart = "kelva: ";
    if (asText_ || !line.starts_with('{')) {
      return context_.reporter.Note(Of(part) + std::string(line.substr(line.starts_with(kStart) ? kStart.size() : 0)));
    }
    const std::string event = TextIn(line, "event").value_or("");
    const std::string message = Of(part) + TextIn(line, "message").value_or("");
    if (event == "note") context_.reporter.Note(message);
    if (event == "error") context_.reporter.Error(message, static_cast<ExitCode>(NumberIn(line, "exit").value_or(1)));
    if (event != "progress") return;
    part.files = NumberIn(line, "files").value_or(0);
    part.of = NumberIn(line, "files_total").value_or(0);
    part.phase = TextIn(line, "phase").value_or("");
  }

  // "K1 12/40, K2 deleting 3/80"
  void ShowProgress() {
    if (!context_.reporter.Style().terminal || !context_.reporter.TakeProgressTurn(std::chrono::steady_clock::now())) {
      return;
    }
    std::string line;
    for (const Part& part : parts_) {
      if (part.run == nullptr || part.of == 0) continue;
      line += (line.empty() ? "" : ", ") + Printable(part.serial) + " " + part.phase + (part.phase.empty() ? "" : " ") +
              std::to_string(part.files) + "/" + std::to_string(part.of);
    }
    constexpr std::size_t kMost = 79;
    if (!line.empty()) context_.reporter.Overwrite(line.substr(0, kMost));
  }

  ExitCode Code() const {
    const auto failed = [](const Part& part) { return part.failed; };
    if (std::none_of(parts_.begin(), parts_.end(), failed)) return ExitCode::kDone;
    return std::all_of(parts_.begin(), parts_.end(), failed) ? parts_.front().code : ExitCode::kPartial;
  }

  Json Results() const {
    Json list = Json::Array();
    for (const Part& part : parts_) {
      const bool named = TextIn(part.document, "serial").has_value();
      if (!part.document.empty()) {
        list.PushPrinted(named ? part.document : WithText(part.document, "serial", part.serial));
      }
      if (part.document.empty()) {
        Json without = Json::Object().SetBytes("serial", part.serial).Set("exit", static_cast<int>(part.code));
        list.Push(without.Set("error", kNoWord));
      }
    }
    return Json::Object().Set("cameras", std::move(list));
  }

  Json PreviewMembers() const {
    Json members = Results();
    for (const char* name : {"new", "known", "bytes", "unlisted", "others", "others_bytes", "to_delete"}) {
      unsigned long long sum = 0;
      for (const Part& part : parts_) sum += NumberIn(part.document, name).value_or(0);
      members.Set(name, sum);
    }
    return members;
  }

  SyncTotals Sum() const {
    SyncTotals sum;
    for (const Part& part : parts_) Add(sum, part.totals);
    return sum;
  }

  static std::string Of(const Part& part) { return Printable(part.serial) + ": "; }

  Context& context_;
  std::deque<Part> parts_;  // stays where it is: the processes' output goes there
  bool asText_ = false;
};

void AskToDelete(Context& context, const std::vector<std::string>& serials) {
  std::string named;
  for (const std::string& serial : serials) named += (named.empty() ? "" : ", ") + Printable(serial);
  AskOnTerminal(context,
                {"What was fetched from these cameras will be deleted on them: " + named +
                     ". Each file goes once it is on disk here, and is as its key says or was read twice, equal.",
                 "Fetch and delete them?", "nothing was fetched or deleted"});
}

}  // namespace

ExitCode RunSyncAll(Context& context) {
  if (context.call.Has("serial")) throw Failure(ExitCode::kUsage, "Use --all or --serial, not both.");
  if (context.trace != nullptr) {
    throw Failure(ExitCode::kUsage, "A trace is of one process, and --all has several; sync the cameras one by one.");
  }
  const std::vector<std::string> serials = AttachedSerials(context);
  if (context.call.Has("delete-after-verify") && !context.call.Has("dry-run")) AskToDelete(context, serials);
  if (!context.call.Has("dry-run")) TargetFolder::OpenOrMake(context.call.words[0]);
  All all(context, serials);
  all.Run();
  return all.Give();
}

}  // namespace apps
