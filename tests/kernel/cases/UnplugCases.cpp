#include <random>
#include <thread>

#include "tests/kernel/cases/Card.h"
#include "tests/kernel/cases/Cases.h"
#include "tests/kernel/cases/Command.h"
#include "tests/kernel/cases/Plugged.h"

// The cable is pulled: at a random byte of a transfer, and between commands.

namespace {

using tap::Check;
using tap::Note;

constexpr const char* kSerial = "U1";

Outcome ReadPicture() {
  return RunProgram({"kelva-kernel-client", kSerial, "read", kPicture});
}

std::string CleanLine(const Card& card) {
  Plugged plugged(card.Inserted(kSerial));
  const Outcome outcome = ReadPicture();
  Check(outcome.LastLine().starts_with("data "), "reading failed with the cable in place: " + outcome.output);
  return outcome.LastLine();
}

void PullAtRandomBytes(int cycles) {
  const Card card("unplug");
  PutPictures(card);
  const std::string right = CleanLine(card);
  std::minstd_rand numbers(20260101);
  int errors = 0;
  for (int i = 0; i < cycles; ++i) {
    Plugged plugged(card.Inserted(kSerial));
    // Up to what the whole operation moves, and a little more: some runs end before the cable is pulled.
    const std::uint64_t byte = 1 + numbers() % (kPictureSize + 2'000);
    plugged.camera().Arm({vcam::FaultKind::kUnplugAtByte, byte});
    const Outcome outcome = ReadPicture();
    const std::string line = outcome.LastLine();
    const bool typed = line.starts_with("error CameraTransferError");
    errors += typed ? 1 : 0;
    Check(outcome.code == 0 && (typed || line == right), "pulled at byte " + std::to_string(byte) +
                                                             ", reading ended with code " +
                                                             std::to_string(outcome.code) + ": " + outcome.output);
  }
  Note(std::to_string(cycles) + " cycles, " + std::to_string(errors) + " times in the middle of the transfer");
  Check(errors > 0, "no cycle pulled the cable in the middle of a transfer");
  Check(CleanLine(card) == right, "the last camera did not work");
}

void PullBetweenCommands() {
  const Card card("unplug");
  PutPictures(card);
  Plugged plugged(card.Inserted(kSerial));
  Outcome outcome;
  // A storm of short commands is under way when the cable goes.
  std::thread client([&] { outcome = RunProgram({"kelva-kernel-client", kSerial, "storm", "1000000"}); });
  const bool started = Eventually([&] { return plugged.cable().Commands() > 100; });
  plugged.Pull();
  client.join();
  Check(started, "the client never sent its commands: " + outcome.output);
  Check(outcome.LastLine().starts_with("error CameraTransferError"), "the client ended otherwise: " + outcome.output);
}

void FindNothingAfterwards() {
  const Card card("unplug");
  { Plugged plugged(card.Inserted(kSerial)); }
  const Outcome outcome = RunProgram({"kelva-kernel-client", kSerial, "ready"});
  Check(outcome.LastLine().starts_with("error CameraError"), "an unplugged camera was found: " + outcome.output);
}

}  // namespace

std::vector<tap::Case> UnplugCases(int cycles) {
  return {{"unplug at a random byte", [=] { PullAtRandomBytes(cycles); }},
          {"unplug between commands", PullBetweenCommands},
          {"unplugged camera is not found", FindNothingAfterwards}};
}
