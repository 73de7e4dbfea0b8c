#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>

#include "bus/BusConnection.h"
#include "vcam/program/Verbs.h"

namespace vcam::program {
namespace {

struct PlugArguments {
  std::string socket;
  std::string storage;
  bus::PlugRequest request;
  int type = 3;
};

/// The folder as the bus can find it, wherever that runs; throws when it cannot be a storage.
std::string UsableStorage(const std::string& folder) {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::absolute(folder, error);
  if (!std::filesystem::is_directory(path, error)) {
    throw std::runtime_error("There is no folder " + folder + "; give --storage a folder with pictures.");
  }
  if (::access(path.c_str(), R_OK | X_OK) != 0) {
    throw std::runtime_error("Cannot read the folder " + folder + ": " + std::strerror(errno) +
                             "; change its permissions or give another.");
  }
  return path.string();
}

int Plug(PlugArguments& arguments) {
  arguments.request.storage = UsableStorage(arguments.storage);
  arguments.request.peripheralType = static_cast<std::uint8_t>(arguments.type);
  bus::BusConnection connection(arguments.socket);
  connection.Request(bus::Kind::kPlug, bus::Encode(arguments.request));
  std::cout << "Plugged in " << arguments.request.serial << " with " << arguments.request.storage << ".\n";
  return kExitDone;
}

}  // namespace

void AddPlug(CLI::App& app, Action& chosen) {
  CLI::App* verb = app.add_subcommand("plug", "Plug in a camera over a storage folder");
  const auto arguments = std::make_shared<PlugArguments>();
  AddSocketOption(*verb, arguments->socket);
  verb->add_option("--serial", arguments->request.serial, "USB serial number")->required()->type_name("S");
  verb->add_option("--storage", arguments->storage, "Folder that is the camera's drive I:")
      ->required()
      ->type_name("DIR");
  verb->add_option("--revision", arguments->request.revision, "Product revision level; default 1.00")->type_name("R");
  verb->add_option("--type", arguments->type, "SCSI peripheral type: 0 disk, 5 compact disc; default 3")
      ->check(CLI::Range(0, 31))
      ->type_name("N");
  verb->add_option("--catalogue", arguments->request.catalogue,
                   "Layout of the catalogue: standard, reordered, unknown-fields or wide")
      ->type_name("NAME");
  verb->callback([&chosen, arguments] { chosen = [arguments] { return Plug(*arguments); }; });
}

}  // namespace vcam::program
