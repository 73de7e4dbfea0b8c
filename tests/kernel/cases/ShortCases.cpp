#include <filesystem>

#include "tests/kernel/cases/Card.h"
#include "tests/kernel/cases/Cases.h"
#include "tests/kernel/cases/Command.h"
#include "tests/kernel/cases/Plugged.h"
#include "tests/kernel/cases/Seat.h"
#include "tests/kernel/cases/Session.h"

// The whole way once, for the quick set: from the plug over kernel, udev, agent, tool and library to the bytes of a picture,
// and a cable that is pulled on the way.

namespace {

namespace fs = std::filesystem;
using tap::Check;

constexpr const char* kSerial = "Q1";
constexpr const char* kFetched = "/tmp/short/IMG_0001.JPG";

Outcome Get() {
  fs::remove_all("/tmp/short");
  fs::create_directories("/tmp/short");
  fs::permissions("/tmp/short", fs::perms::all);
  return RunProgram(AsPerson({"kelva", "get", "--serial", kSerial, "I:/DCIM/100ABCDE/IMG_0001.JPG", "-o", kFetched}));
}

void FromPlugToPicture() {
  const Seat seat;
  const Card card("short");
  PutPictures(card);
  const AgentSession session;
  const Plugged plugged(card.Inserted(kSerial));
  Check(session.Settles(1),
        std::to_string(session.Launches()) + " launches; the agent said: " + session.agent().Printed());
  const Outcome list = RunProgram(AsPerson({"kelva", "list"}));
  Check(list.code == 0 && list.output.find(kSerial) != std::string::npos, list.output);
  const Outcome get = Get();
  Check(get.code == 0, get.output);
  const Outcome compare = RunProgram({"cmp", kFetched, (card.folder() / "DCIM/100ABCDE/IMG_0001.JPG").string()});
  Check(compare.code == 0, "another picture was fetched: " + compare.output);
}

void PulledOnTheWay() {
  const Seat seat;
  const Card card("short");
  PutPictures(card);
  Plugged plugged(card.Inserted(kSerial));
  plugged.camera().Arm({vcam::FaultKind::kUnplugAtByte, kPictureSize / 2});
  const Outcome get = Get();
  Check(get.code == 5 && !get.output.empty(), "it ended with " + std::to_string(get.code) + ": " + get.output);
  Check(fs::is_empty("/tmp/short"), "it left a file behind");
}

}  // namespace

std::vector<tap::Case> ShortCases() {
  return {{"a camera that is plugged in starts the application and gives its pictures", FromPlugToPicture},
          {"a cable that is pulled in mid transfer leaves no file", PulledOnTheWay}};
}
