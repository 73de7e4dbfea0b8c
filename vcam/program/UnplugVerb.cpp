#include <iostream>
#include <memory>

#include "bus/BusConnection.h"
#include "vcam/program/Verbs.h"

namespace vcam::program {
namespace {

struct UnplugArguments {
  std::string socket;
  std::string serial;
};

int Unplug(const UnplugArguments& arguments) {
  bus::BusConnection connection(arguments.socket);
  connection.Request(bus::Kind::kUnplug, bus::EncodeText(arguments.serial));
  std::cout << "Unplugged " << arguments.serial << ".\n";
  return kExitDone;
}

}  // namespace

void AddUnplug(CLI::App& app, Action& chosen) {
  CLI::App* verb = app.add_subcommand("unplug", "Unplug a camera, also in the middle of a command");
  const auto arguments = std::make_shared<UnplugArguments>();
  AddSocketOption(*verb, arguments->socket);
  verb->add_option("serial", arguments->serial, "USB serial number")->required()->type_name("S");
  verb->callback([&chosen, arguments] { chosen = [arguments] { return Unplug(*arguments); }; });
}

}  // namespace vcam::program
