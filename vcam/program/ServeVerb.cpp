#include <iostream>
#include <memory>

#include "vcam/program/EndSignals.h"
#include "vcam/program/Verbs.h"
#include "vcam/server/BusServer.h"

namespace vcam::program {
namespace {

int Serve(const std::string& path) {
  const base::FileDescriptor stop = EndSignals();
  server::BusServer busServer(path);
  std::cout << "Serving virtual cameras at " << path << "." << std::endl;
  busServer.Run(stop.Get());
  return kExitDone;
}

}  // namespace

void AddServe(CLI::App& app, Action& chosen) {
  CLI::App* verb = app.add_subcommand("serve", "Serve a bus, empty at first, until SIGTERM or Ctrl-C");
  const auto path = std::make_shared<std::string>();
  AddSocketOption(*verb, *path);
  verb->callback([&chosen, path] { chosen = [path] { return Serve(*path); }; });
}

}  // namespace vcam::program
