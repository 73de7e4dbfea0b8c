// Waits for a camera that another program holds, and gives it up for others.

#include "apps/camera/Turns.h"

#include <algorithm>
#include <thread>
#include <utility>
#include <vector>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "src/usb/osx/OsxCamera.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

constexpr milliseconds kWaitBusy = 10s;
// Who is first in line asks this often for the camera.
constexpr auto kEachAttempt = 5ms;
// For programs that are not seen in line: short, since every second of a long file has one.
constexpr auto kGap = 2ms;
// Who is not first asks now and then, in case who is first was suspended.
constexpr auto kBehindFirst = 250ms;
constexpr auto kLook = 250ms;
constexpr auto kLookAtLast = 50ms;
constexpr auto kTellAfter = 500ms;
// Nobody holds the camera, and it does not open.
constexpr auto kUnexplained = 500ms;

bool IsSame(const AttachedCamera& one, const AttachedCamera& other) {
  return kelva::ServiceOf(*one.camera) == kelva::ServiceOf(*other.camera);
}

}  // namespace

// One wait for a turn.
struct Turns::Wait {
  explicit Wait(milliseconds time) : patience(time) {}

  bool IsOver(Clock::time_point now) const { return now >= until + (holders.empty() ? kUnexplained : 0ms); }

  const milliseconds patience;
  const Clock::time_point start = Clock::now();
  Clock::time_point until = start + patience;
  Clock::time_point look = start + std::min<milliseconds>(kLook, patience);
  Clock::time_point ask = start + kBehindFirst;  // for the camera, also when another program is first in line
  std::string holders;
  bool isLong = false;
  bool told = false;
};

milliseconds WaitBusy(const Context& context) {
  const auto wanted = context.call.Value("wait-busy");
  return wanted ? ParseSeconds(*wanted, "--wait-busy", Zero::kTaken) : kWaitBusy;
}

Turns::Turns(Context& context, AttachedCamera chosen, milliseconds patience)
    : Turns(context, std::move(chosen), patience, Length()) {}

Turns::Turns(Context& context, AttachedCamera chosen, milliseconds patience, Length length)
    : context_(context), length_(length), outer_(context.turns), chosen_(std::move(chosen)) {
  context_.stop.Check();
  Open(patience);
  context_.turns = this;
}

Turns::~Turns() {
  context_.turns = outer_;
  chosen_.camera->Close();
}

bool Turns::LetOthers() {
  if (!IsOver()) return false;
  line_.HoldForLong(false);
  const bool awaited = line_.IsAwaited();
  if (awaited) line_.Join();
  chosen_.camera->Close();
  if (!awaited) std::this_thread::sleep_for(kGap);
  // Work that has begun does not end because --wait-busy is short.
  Open(std::max(WaitBusy(context_), kWaitBusy));
  return true;
}

void Turns::LetOthers(kelva::FileReader& reader, std::span<const char> last) {
  if (reader.Position() >= reader.Size() || !IsOver()) return;
  if (reader.ReadsForwardOnly()) return line_.HoldForLong(true);
  LetOthers();
  reader.Select();
  const std::uint64_t at = reader.Position();
  // Little, because a slow camera is given up many times in one file.
  constexpr std::uint64_t kMostAgain = 4'096;
  std::vector<char> again(std::min<std::uint64_t>({last.size(), at, kMostAgain}));
  const auto before = last.last(again.size());
  if (reader.Read(at - again.size(), again) == again.size() && std::equal(again.begin(), again.end(), before.begin())) {
    return;
  }
  throw CameraError("the file was changed on the camera while it was read");
}

void Turns::Without(const std::function<void()>& wait, std::optional<milliseconds> patience) {
  line_.HoldForLong(false);
  chosen_.camera->Close();
  wait();
  Open(patience.value_or(std::max(WaitBusy(context_), kWaitBusy)));
}

void Turns::HoldForLong() {
  MakeLine();
  line_.HoldForLong(true);
}

bool Turns::IsOver() {
  const auto held = Clock::now() - since_;
  if (held < length_.awaited) return false;
  if (held >= length_.alone) return true;
  MakeLine();
  return line_.IsAwaited();
}

void Turns::Open(milliseconds patience) {
  // Whoever stands in line already may not be overtaken by a turn that follows a turn.
  const bool first = !wasOpen_ || line_.IsFirst();
  if (!first || !chosen_.camera->Open()) AwaitTurn(patience);
  line_.Leave();
  wasOpen_ = true;
  since_ = Clock::now();
}

void Turns::AwaitTurn(milliseconds patience) {
  MakeLine();
  line_.Join();
  Wait wait(patience);
  for (;;) {
    context_.stop.Check();
    const auto now = Clock::now();
    if (line_.IsFirst() || now >= wait.ask) {
      if (chosen_.camera->Open()) break;
      wait.ask = now + kBehindFirst;
    }
    wait.isLong = line_.IsHeldForLong();
    if (wait.isLong) wait.until = now + wait.patience;
    if (now >= wait.look) LookAround(wait);
    if (wait.IsOver(now)) throw StaysHeld(wait.holders);
    std::this_thread::sleep_for(kEachAttempt);
  }
  if (wait.told) context_.reporter.Clear();
}

// Nobody holds a camera that went, and who held it a moment ago may have given it up since: the last one is remembered.
void Turns::LookAround(Wait& wait) {
  FindAgain();
  const std::string holders = context_.holdersOf ? context_.holdersOf(chosen_.facts.serial) : "";
  if (!holders.empty()) wait.holders = holders;
  const auto now = Clock::now();
  if (now - wait.start >= kTellAfter) Tell(wait);
  wait.look = now < wait.until ? std::min(now + kLook, wait.until) : now + kLookAtLast;
}

void Turns::FindAgain() {
  for (AttachedCamera& camera : FindAttached(context_.diversion)) {
    if (camera.facts.serial != chosen_.facts.serial) continue;
    if (IsSame(camera, chosen_)) return;
    if (wasOpen_ || chosen_.facts.serial.empty()) continue;
    chosen_ = std::move(camera);
    return;
  }
  throw Failure(ExitCode::kGone, Name() + " went away " +
                                     (wasOpen_ ? "while another program had its turn" : "before it could be opened") +
                                     "; plug it in again.");
}

void Turns::Tell(Wait& wait) {
  const std::string line = "Waiting for " + (wait.holders.empty() ? "another program" : Printable(wait.holders)) +
                           ", which holds the camera" + (wait.isLong ? " for one long file" : "") + " ...";
  const bool first = !std::exchange(wait.told, true);
  // Work that has its turns says it on the line of its progress.
  if (wasOpen_) return context_.reporter.Overwrite(line);
  if (first) context_.reporter.Note(line);
}

void Turns::MakeLine() {
  if (std::exchange(hasLine_, true) || !context_.lineOf) return;
  line_ = WaitingLine(context_.lineOf(chosen_.facts.serial));
}

Failure Turns::StaysHeld(const std::string& holders) const {
  if (!holders.empty()) {
    return Failure(ExitCode::kBusy,
                   Name() + " is held by " + Printable(holders) +
                       "; wait until it has finished, or close it. A longer --wait-busy waits longer.");
  }
  return Failure(ExitCode::kBusy,
                 Name() +
                     " is attached but cannot be opened: another program holds it, or this user may not use it; "
                     "`kelva doctor` says which and what to do.");
}

std::string Turns::Name() const {
  return chosen_.facts.serial.empty() ? "The camera" : "Camera " + Printable(chosen_.facts.serial);
}

bool LetOthers(Context& context) {
  return context.turns != nullptr && context.turns->LetOthers();
}

void LetOthers(Context& context, kelva::FileReader& reader, std::span<const char> last) {
  if (context.turns != nullptr) context.turns->LetOthers(reader, last);
}

void WithoutCamera(Context& context, const std::function<void()>& wait, std::optional<milliseconds> patience) {
  context.turns != nullptr ? context.turns->Without(wait, patience) : wait();
}

void HoldForLong(Context& context) {
  if (context.turns != nullptr) context.turns->HoldForLong();
}

}  // namespace apps
