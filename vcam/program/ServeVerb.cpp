// `kelva-vcam serve`: a bus of virtual cameras, until a signal ends it.
#include "vcam/program/EndSignals.h"
#include "vcam/program/Verbs.h"
#include "vcam/server/BusServer.h"

namespace vcam::program {
namespace {

apps::ExitCode Serve(apps::Context& context) {
  const std::string path = *context.call.Value("virtual");
  const EndSignals signals;
  server::BusServer busServer(path);
  apps::Json members = apps::Json::Object();
  context.Event("serving", std::move(members.SetBytes("path", path)), "Serving virtual cameras at " + path + ".\n");
  busServer.Run(signals.Descriptor());
  context.Result(apps::Json::Object(), "");
  return apps::ExitCode::kDone;
}

constexpr apps::Option kOptions[] = {kBus};
constexpr apps::Example kExamples[] = {{"PROGRAM serve --virtual /tmp/bus &", "Serve a bus in the background."}};
constexpr apps::Verb kVerbs[] = {
    {"serve",
     "Serve a bus, empty at first, until SIGTERM or Ctrl-C",
     {},
     kOptions,
     "Prints one line when the bus is ready. Replaces a socket that no process serves any more, and removes its own "
     "socket at the end. Only the user who serves a bus may connect to it.",
     "path: the socket, in the event \"serving\"",
     kExamples,
     Serve},
};

}  // namespace

std::span<const apps::Verb> ServeVerbs() {
  return kVerbs;
}

}  // namespace vcam::program
