#include <signal.h>
#include <sys/signalfd.h>

#include <cerrno>
#include <cstring>
#include <iostream>
#include <memory>
#include <stdexcept>

#include "vcam/bus/BusServer.h"
#include "vcam/program/Verbs.h"

namespace vcam::program {
namespace {

/// Readable once the process is asked to end. Blocks the signals, so it comes before any thread is started.
FileDescriptor EndSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGTERM);
  sigaddset(&signals, SIGINT);
  ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  FileDescriptor descriptor(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
  if (!descriptor) throw std::runtime_error(std::string("Cannot watch for signals: ") + std::strerror(errno) + ".");
  return descriptor;
}

int Serve(const std::string& path) {
  const FileDescriptor stop = EndSignals();
  bus::BusServer server(path);
  std::cout << "Serving virtual cameras at " << path << "." << std::endl;
  server.Run(stop.get());
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
