// Entry point of `kelva-desktop-worker`.
#include <vector>

#include "apps/desktop/worker/Verbs.h"
#include "apps/tool/Tool.h"

int main(int argc, char** argv) {
  std::vector<const char*> arguments(argv, argv + argc);
  if (arguments.empty()) arguments.push_back("");
  arguments.front() = "--json";  // the window reads nothing else
  return apps::RunTool(apps::DesktopWorker(), arguments);
}
