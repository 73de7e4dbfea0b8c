#include <iostream>
#include <stdexcept>

#include "bus/BusConnection.h"
#include "vcam/program/Verbs.h"

namespace vcam::program {
namespace {

int Report(const std::string& sentence, int code) {
  std::cerr << "kelva-vcam: " << sentence << "\n";
  return code;
}

int UsageError(const CLI::ParseError& error) {
  std::string what = error.what();
  while (!what.empty() && (what.back() == '.' || what.back() == '\n')) what.pop_back();
  return Report(what + "; see `kelva-vcam --help`.", kExitUsage);
}

bool HasVerb(CLI::App& app, const std::string& name) {
  return !app.get_subcommands([&name](CLI::App* verb) { return verb->get_name() == name; }).empty();
}

int RunChosen(const Action& chosen) {
  try {
    return chosen();
  } catch (const bus::BusRefusal& refusal) {
    return Report(refusal.what(), refusal.code == bus::ErrorCode::kNoSuchCamera ? kExitNoSuchCamera : kExitFailed);
  } catch (const std::exception& error) {
    return Report(error.what(), kExitFailed);
  }
}

}  // namespace

void AddSocketOption(CLI::App& verb, std::string& path) {
  verb.add_option("--socket", path, "Path of the bus's socket")->required()->type_name("PATH");
}

int Run(int argc, char** argv) {
  CLI::App app("Virtual Kelva cameras: a bus of them, and what happens to them.", "kelva-vcam");
  app.set_version_flag("--version", std::string("kelva-vcam ") + KELVA_VERSION);
  app.require_subcommand(1);
  app.footer(
      "Exit codes: 0 done, 1 failed, 2 wrong usage, 3 no such camera.\n"
      "Example: kelva-vcam serve --socket /tmp/bus &\n"
      "         kelva-vcam plug --socket /tmp/bus --serial K100 --storage ~/Pictures/card");
  Action chosen;
  for (const auto add : {AddServe, AddPlug, AddUnplug, AddStatus, AddFault, AddUsbip}) add(app, chosen);
  if (argc > 1 && argv[1][0] != '-' && !HasVerb(app, argv[1])) {
    return Report("There is no command " + std::string(argv[1]) + "; see `kelva-vcam --help`.", kExitUsage);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return error.get_exit_code() == 0 ? app.exit(error) : UsageError(error);
  }
  return RunChosen(chosen);
}

}  // namespace vcam::program
