#include <signal.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <thread>

#include "tests/kernel/cases/Card.h"
#include "tests/kernel/cases/Cases.h"
#include "tests/kernel/cases/Command.h"
#include "tests/kernel/cases/Plugged.h"
#include "tests/kernel/cases/Seat.h"
#include "tests/kernel/cases/Session.h"

// From plug over udev and agent to the launch of the desktop application.

namespace {

using tap::Check;
using tap::Note;

// More than the largest buffer holds.
constexpr int kFlood = 1000;

void CheckLaunches(const AgentSession& session, int launches, const std::string& when) {
  Check(session.Settles(launches), when + ": " + std::to_string(session.Launches()) + " launches instead of " +
                                       std::to_string(launches) + "; the agent said: " + session.agent().Printed());
}

void LaunchOncePerPlug() {
  const Seat seat;
  const Card card("agent");
  const AgentSession session;
  CheckLaunches(session, 0, "before any camera");
  {
    Plugged plugged(card.Inserted("A1"));
    CheckLaunches(session, 1, "after the first plug");
  }
  {
    Plugged plugged(card.Inserted("A1"));
    CheckLaunches(session, 2, "after the second plug");
  }
}

void IgnoreWhatIsThere() {
  const Seat seat;
  const Card card("agent");
  const Card other("other");
  const Plugged present(card.Inserted("A1"));
  const AgentSession session;
  CheckLaunches(session, 0, "with a camera present at the start");
  const Plugged later(other.Inserted("A2"));
  CheckLaunches(session, 1, "after a second camera");
}

vcam::Options BadCamera(const Card& card) {
  vcam::Options options = card.Inserted("B1");
  options.peripheralType = 5;
  options.revision = "Q42";
  return options;
}

void RecogniseABadCamera() {
  const Seat seat;
  const Card card("agent");
  const AgentSession session;
  const Background watch({"kelva", "watch"}, "/tmp/watch-output");
  std::this_thread::sleep_for(std::chrono::seconds(3));
  const Plugged plugged(BadCamera(card));
  const bool reported = Eventually([&] { return watch.Printed().find("bad ") != std::string::npos; });
  Check(reported, "kelva watch did not report it: " + watch.Printed());
  CheckLaunches(session, 0, "after a bad camera");
}

// Messages that the kernel could not queue for the process's netlink sockets.
unsigned long Dropped(pid_t process) {
  std::ifstream table("/proc/net/netlink");
  unsigned long sum = 0;
  for (std::string line; std::getline(table, line);) {
    // sk Eth Pid Groups Rmem Wmem Dump Locks Drops Inode
    std::istringstream words(line);
    std::vector<std::string> fields{std::istream_iterator<std::string>(words), {}};
    if (fields.size() >= 9 && fields[2] == std::to_string(process)) sum += std::stoul(fields[8]);
  }
  return sum;
}

// Events of a camera that is there, each through udev and to whoever listens for cameras.
void Flood(const Plugged& present) {
  const std::string event = "/sys/class/scsi_generic/" + present.node().substr(5) + "/uevent";
  for (int i = 0; i < kFlood; ++i) std::ofstream(event) << "change" << std::endl;
  RunProgram({"udevadm", "settle"});
}

void SurviveAFullBuffer() {
  const Seat seat;
  const Card card("agent");
  const Card other("other");
  const Plugged present(card.Inserted("A1"));
  const AgentSession session;
  session.agent().Signal(SIGSTOP);
  Flood(present);
  const auto lost = Dropped(session.agent().process());
  Check(lost > 0, "the agent's buffer did not overflow");
  const Plugged plugged(other.Inserted("A2"));
  Note(std::to_string(lost) + " events lost before the camera came, " +
       std::to_string(Dropped(session.agent().process())) + " with its own");
  session.agent().Signal(SIGCONT);
  CheckLaunches(session, 1, "after a camera whose event was lost");
}

}  // namespace

std::vector<tap::Case> AgentCases() {
  return {{"each plug launches the application once", LaunchOncePerPlug},
          {"a camera present at the start launches nothing", IgnoreWhatIsThere},
          {"a bad camera is reported and launches nothing", RecogniseABadCamera},
          {"a full event buffer costs the agent no camera", SurviveAFullBuffer}};
}
