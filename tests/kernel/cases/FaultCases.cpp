#include <algorithm>
#include <fstream>
#include <optional>
#include <set>

#include "tests/kernel/cases/Card.h"
#include "tests/kernel/cases/Cases.h"
#include "tests/kernel/cases/Command.h"
#include "tests/kernel/cases/Plugged.h"
#include "vcam/usbip/CableFaults.h"

// Every fault at every command of the most used operations, the pulled cable included: the library gives the right data or
// says what failed, in time, and the camera, or the one that is plugged in next, can be used again afterwards.
//
// A camera that sends less than it was asked for and says so has given an answer. What the library makes of it is its
// contract: a whole file is measured against the announced size; a list has none and ends where the answer ends, so it
// may lack records but never holds a wrong one; an announced size that is cut off itself is a wrong size, and data far
// beyond it stop the process at an assertion.

namespace {

using tap::Check;
using tap::Note;

constexpr const char* kSerial = "F1";
constexpr const char* kWritten = "DCIM/NEW.BIN";

struct Operation {
  std::string name;
  std::vector<std::string> arguments;
};

const std::vector<Operation> kOperations{
    {"ready", {}},          {"information", {}},  {"catalogue", {}},
    {"tree", {"I:\\DCIM"}}, {"read", {kPicture}}, {"write", {"I:\\DCIM\\NEW.BIN", "150000"}},
};

const std::vector<std::string> kFaults{"fail",         "short",     "stall",     "half-residue",  "huge-residue",
                                       "zero-residue", "skip-data", "wrong-tag", "fail-no-sense", "phase-error",
                                       "short-status", "babble",    "surplus1",  "surplus2"};

// What declares less than was asked for, truly or not.
const std::set<std::string> kDeclaredShort{"short",        "half-residue", "huge-residue",
                                           "zero-residue", "skip-data",    "surplus2"};

using Records = std::set<std::string>;

Records AnswerRecords() {
  std::ifstream file("/tmp/answer");
  Records records;
  for (std::string line; std::getline(file, line);) records.insert(line);
  return records;
}

// The camera's information is one record: what came, and zeros.
bool IsBeginning(std::string_view part, std::string_view whole) {
  if (part.size() != whole.size()) return false;
  const auto differs = std::mismatch(part.begin(), part.end(), whole.begin()).first;
  // The last field is the library's own.
  return std::all_of(differs, part.end() - 8, [](char digit) { return digit == '0'; });
}

Outcome RunClient(const Operation& operation) {
  std::vector<std::string> words{"kelva-kernel-client", kSerial, operation.name};
  words.insert(words.end(), operation.arguments.begin(), operation.arguments.end());
  return RunProgram(words);
}

bool IsTypedError(const std::string& line) {
  return line.starts_with("error Camera");
}

// One operation, what it says when nothing goes wrong, and how many commands that takes.
class Subject {
 public:
  Subject(Plugged& plugged, const Card& card, Operation operation)
      : plugged_(plugged), card_(card), operation_(std::move(operation)) {
    const auto before = plugged_.cable().Commands();
    const Outcome clean = RunClient(operation_);
    expected_ = clean.LastLine();
    records_ = AnswerRecords();
    written_ = card_.Read(kWritten);
    commands_ = plugged_.cable().Commands() - before;
    Check(clean.code == 0 && expected_.starts_with("data "),
          operation_.name + " failed without a fault: " + clean.output);
  }

  std::uint64_t commands() const { return commands_; }
  const std::string& expected() const { return expected_; }

  // Nothing when the run ended well, otherwise what was wrong with it.
  std::optional<std::string> Try(const std::string& fault, std::uint64_t at) {
    vcam::usbip::ArmByText(fault + "@" + std::to_string(at), plugged_.camera(), plugged_.cable());
    const Outcome outcome = RunClient(operation_);
    plugged_.camera().Disarm();
    plugged_.cable().Disarm();
    ++runs_;
    if (Acceptable(outcome, fault)) return std::nullopt;
    return operation_.name + " with " + fault + " at command " + std::to_string(at) + " ended with code " +
           std::to_string(outcome.code) + ": " + outcome.LastLine();
  }

  bool WorksAgain() { return RunClient(operation_).LastLine() == expected_; }
  int runs() const { return runs_; }
  int right() const { return right_; }
  int lesser() const { return lesser_; }

 private:
  bool Acceptable(const Outcome& outcome, const std::string& fault) {
    const std::string line = outcome.LastLine();
    const bool right =
        outcome.code == 0 && line == expected_ && (operation_.name != "write" || card_.Read(kWritten) == written_);
    right_ += right ? 1 : 0;
    if (right || (outcome.code == 0 && IsTypedError(line))) return true;
    return kDeclaredShort.contains(fault) && KeepsContract(outcome);
  }

  bool KeepsContract(const Outcome& outcome) {
    ++lesser_;
    if (outcome.Aborted()) return outcome.output.find("Assertion failed: ") != std::string::npos;
    if (outcome.code != 0) return false;
    const Records records = AnswerRecords();
    if (outcome.LastLine() == "neutral" || operation_.name == "write") return operation_.name != "write";
    // A file has no lesser answer, and nothing of it is among the records.
    if (operation_.name == "read") return false;
    if (operation_.name == "information") return IsBeginning(*records.begin(), *records_.begin());
    return std::includes(records_.begin(), records_.end(), records.begin(), records.end());
  }

  Plugged& plugged_;
  const Card& card_;
  Operation operation_;
  std::string expected_;
  std::string written_;
  std::uint64_t commands_ = 0;
  int runs_ = 0;
  Records records_;
  int right_ = 0;
  int lesser_ = 0;
};

void TryAll(const Operation& operation, const std::vector<std::string>& faults) {
  const Card card("faults");
  PutPictures(card);
  Plugged plugged(card.Inserted(kSerial));
  Subject subject(plugged, card, operation);
  std::vector<std::string> complaints;
  for (const std::string& fault : faults) {
    for (std::uint64_t at = 1; at <= subject.commands(); ++at) {
      if (const auto complaint = subject.Try(fault, at)) complaints.push_back(*complaint);
    }
    if (!subject.WorksAgain()) complaints.push_back(operation.name + " did not work again after " + fault);
  }
  for (const std::string& complaint : complaints) Note(complaint);
  Note(std::to_string(subject.commands()) + " commands, " + std::to_string(subject.runs()) + " runs, " +
       std::to_string(subject.right()) + " with right data, " + std::to_string(subject.lesser()) +
       " with what a short answer leaves, the others with an error");
  Check(complaints.empty(), std::to_string(complaints.size()) + " runs ended badly");
}

std::uint64_t CommandsOf(const Operation& operation, const Card& card, std::string& right) {
  Plugged plugged(card.Inserted(kSerial));
  Subject subject(plugged, card, operation);
  right = subject.expected();
  return subject.commands();
}

// Pulls the cable in the midst of each command of the operation, each time that of a new camera.
void PullInEveryCommand(const Operation& operation) {
  const Card card("faults");
  PutPictures(card);
  std::string right;
  const std::uint64_t commands = CommandsOf(operation, card, right);
  int complaints = 0;
  for (std::uint64_t at = 1; at <= commands; ++at) {
    Plugged plugged(card.Inserted(kSerial));
    plugged.cable().Arm(vcam::usbip::CableFault::kPull, at);
    const Outcome outcome = RunClient(operation);
    if (outcome.code == 0 && outcome.LastLine().starts_with("error CameraTransferError")) continue;
    ++complaints;
    Note("pulled in command " + std::to_string(at) + ", " + operation.name + " ended with code " +
         std::to_string(outcome.code) + ": " + outcome.output);
  }
  Note(std::to_string(commands) + " cables pulled");
  Check(complaints == 0, std::to_string(complaints) + " runs ended badly");
  std::string again;
  CommandsOf(operation, card, again);
  Check(again == right, "the next camera answered " + again + " instead of " + right);
}

}  // namespace

std::vector<tap::Case> FaultCases() {
  std::vector<tap::Case> cases;
  for (const Operation& operation : kOperations) {
    cases.push_back({"faults of the wire during " + operation.name, [=] { TryAll(operation, kFaults); }});
    cases.push_back({"silence during " + operation.name, [=] { TryAll(operation, {"hang"}); }});
    cases.push_back({"unplug in each command of " + operation.name, [=] { PullInEveryCommand(operation); }});
  }
  return cases;
}
