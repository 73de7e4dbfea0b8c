// Entry point of `kelva-mount`, which does `kelva mount`.
#include <malloc.h>

#include <array>
#include <span>
#include <string_view>
#include <vector>

#include "apps/commandline/Parse.h"
#include "apps/kelva/verbs/Verbs.h"
#include "apps/mount/Launch.h"
#include "apps/mount/Mount.h"
#include "apps/tool/Tool.h"

namespace {

std::string_view NameOf(const char* path) {
  const std::string_view name(path);
  return name.substr(name.rfind('/') + 1);
}

}  // namespace

int main(int argc, char** argv) {
  // Pieces come and go by the thousand, and few are there at once: their memory is not worth giving back.
  ::mallopt(M_ARENA_MAX, 1);
  ::mallopt(M_TRIM_THRESHOLD, 8 << 20);
  ::mallopt(M_MMAP_THRESHOLD, 1 << 20);
  std::vector<const char*> words(argv, argv + argc);
  const std::string_view name = words.empty() ? "" : NameOf(words.front());
  if (!words.empty()) words.erase(words.begin());
  // Started by `kelva`, it has the whole command line of that.
  if (name != "kelva" && name != apps::kDaemonName) words.insert(words.begin(), "mount");
  std::array<apps::Verb, 1> verbs = {apps::MountVerbs().front()};
  verbs[0].doneBy = {};
  verbs[0].run = name == apps::kDaemonName ? apps::MountAsDaemon : apps::RunMount;
  apps::Program program = apps::Kelva();
  program.verbs = verbs;
  return apps::RunTool(program, words);
}
