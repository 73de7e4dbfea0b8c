#include "tests/kernel/cases/Session.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/kernel/cases/Plugged.h"
#include "tests/kernel/cases/Seat.h"
#include "tests/kernel/cases/Tap.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kLaunches = "/tmp/session/launches";
// More than the agent, the opener and the application take together.
constexpr std::chrono::seconds kAWhile{5};

// The folders of the session and the application; the agent's words.
std::vector<std::string> PrepareSession() {
  fs::remove_all("/tmp/session");
  fs::create_directories("/tmp/session/data/applications");
  fs::create_directories("/tmp/session/run");
  std::ofstream("/tmp/session/application") << "#!/bin/sh\necho launched >>" << kLaunches << "\n";
  fs::permissions("/tmp/session/application", fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
  std::ofstream("/tmp/session/data/applications/com.kelva.Desktop.desktop")
      << "[Desktop Entry]\nType=Application\nName=Kelva\nExec=/tmp/session/application\n";
  for (const char* folder : {"/tmp/session", "/tmp/session/run"}) {
    tap::Check(::chown(folder, kPerson, kPerson) == 0, std::string("cannot give away ") + folder);
  }
  return AsPerson({"env", "HOME=/tmp/session", "XDG_DATA_HOME=/tmp/session/data", "XDG_DATA_DIRS=/tmp/session/data",
                   "XDG_RUNTIME_DIR=/tmp/session/run", "DBUS_SESSION_BUS_ADDRESS=unix:path=/tmp/session/no-bus",
                   "/kelva/kelva-helper"});
}

}  // namespace

AgentSession::AgentSession() : agent_(PrepareSession(), "/tmp/agent-output") {
  const bool watches = Eventually([&] { return agent_.Printed().find("Watching") != std::string::npos; });
  tap::Check(watches, "the agent does not watch: " + agent_.Printed());
}

int AgentSession::Launches() const {
  std::ifstream file(kLaunches);
  return static_cast<int>(std::count(std::istreambuf_iterator<char>(file), {}, '\n'));
}

bool AgentSession::Settles(int launches) const {
  const bool reached = Eventually([&] { return Launches() >= launches; });
  std::this_thread::sleep_for(kAWhile);
  return reached && Launches() == launches;
}
