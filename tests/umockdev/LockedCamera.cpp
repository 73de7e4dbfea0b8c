// Runs a command on a machine whose one camera its user may not open: LockedCamera STORAGE COMMAND... Each line on standard input
// gives or takes the permission. Ends with the command's exit status once its input has ended.
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "tests/umockdev/MockMachine.h"

namespace {

// Root may open anything until it gives that up.
[[noreturn]] void Become(char** command) {
  ::setenv("LD_PRELOAD", KELVA_UMOCKDEV_PRELOAD, 1);
  std::vector<char*> words;
  for (const char* word : {"setpriv", "--bounding-set=-dac_override,-dac_read_search"}) {
    words.push_back(const_cast<char*>(word));
  }
  while (*command != nullptr) words.push_back(*command++);
  words.push_back(nullptr);
  ::execvp(words.front(), words.data());
  std::_Exit(127);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  mock::MockMachine machine;
  machine.Plug({.serial = "K1"});
  vcam::Options options;
  options.serial = "K1";
  options.storage = argv[1];
  machine.Attach(0, std::make_shared<mock::SgDoor>(std::make_shared<vcam::VirtualCamera>(options)));
  bool usable = false;
  machine.SetUsable(0, usable);
  const pid_t child = ::fork();
  if (child == 0) Become(argv + 2);
  for (std::string line; std::getline(std::cin, line);) {
    machine.SetUsable(0, usable = !usable);
    machine.Change(0);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
