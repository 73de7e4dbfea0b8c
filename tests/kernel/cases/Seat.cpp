#include "tests/kernel/cases/Seat.h"

#include <filesystem>
#include <fstream>

#include "tests/kernel/cases/Command.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kRule = "/etc/udev/rules.d/70-kelva.rules";
constexpr const char* kSeats = "/run/systemd/seats";

}  // namespace

Seat::Seat() {
  fs::create_directories("/etc/udev/rules.d");
  fs::copy_file("/kelva/70-kelva.rules", kRule, fs::copy_options::overwrite_existing);
  fs::create_directories(kSeats);
  std::ofstream(std::string(kSeats) + "/seat0") << "ACTIVE=c1\nACTIVE_UID=" << kPerson << "\nUIDS=" << kPerson << "\n";
  RunProgram({"udevadm", "control", "--reload"});
}

Seat::~Seat() {
  fs::remove(kRule);
  fs::remove_all(kSeats);
  RunProgram({"udevadm", "control", "--reload"});
}

std::vector<std::string> AsPerson(const std::vector<std::string>& words) {
  const std::string id = std::to_string(kPerson);
  std::vector<std::string> all{"setpriv", "--reuid=" + id, "--regid=" + id, "--clear-groups"};
  all.insert(all.end(), words.begin(), words.end());
  return all;
}
