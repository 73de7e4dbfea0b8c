#include <iostream>
#include <memory>

#include "bus/BusConnection.h"
#include "vcam/faults/Fault.h"
#include "vcam/program/Verbs.h"

namespace vcam::program {
namespace {

struct FaultArguments {
  std::string socket;
  bus::FaultRequest request;
};

int Arm(const FaultArguments& arguments) {
  bus::BusConnection connection(arguments.socket);
  connection.Request(bus::Kind::kFault, bus::Encode(arguments.request));
  std::cout << "Armed " << arguments.request.name << " on " << arguments.request.serial << ".\n";
  return kExitDone;
}

}  // namespace

void AddFault(CLI::App& app, Action& chosen) {
  CLI::App* verb = app.add_subcommand("fault", "Make something go wrong");
  const auto arguments = std::make_shared<FaultArguments>();
  AddSocketOption(*verb, arguments->socket);
  verb->add_option("serial", arguments->request.serial, "USB serial number")->required()->type_name("S");
  verb->add_option("name", arguments->request.name, FaultNames() + ", or none to take all back")
      ->required()
      ->type_name("NAME");
  verb->add_option("at", arguments->request.at,
                   "Which command from now, default 1; for slow: milliseconds; for unplug: bytes until then")
      ->type_name("AT");
  verb->callback([&chosen, arguments] { chosen = [arguments] { return Arm(*arguments); }; });
}

}  // namespace vcam::program
