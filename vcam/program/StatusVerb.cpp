#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "bus/BusConnection.h"
#include "vcam/program/Verbs.h"

namespace vcam::program {
namespace {

struct StatusArguments {
  std::string socket;
  bool json = false;
};

std::vector<bus::CameraStatus> Fetch(const std::string& socket) {
  bus::BusConnection connection(socket);
  const bus::Frame answer = connection.Request(bus::Kind::kStatus, {});
  const auto list = bus::DecodeStatusList(answer.payload);
  if (!list) throw std::runtime_error("The bus sent a status that cannot be read; use programs of one release.");
  return *list;
}

void PrintJson(const std::vector<bus::CameraStatus>& list) {
  nlohmann::json cameras = nlohmann::json::array();
  for (const bus::CameraStatus& camera : list) {
    cameras.push_back({{"serial", camera.serial},
                       {"vendor", camera.vendor},
                       {"product", camera.product},
                       {"revision", camera.revision},
                       {"type", camera.peripheralType},
                       {"storage", camera.storage},
                       {"holder", camera.holder == 0 ? nlohmann::json() : nlohmann::json(camera.holder)},
                       {"commands", camera.commands}});
  }
  std::cout << cameras.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
}

void PrintText(const std::vector<bus::CameraStatus>& list) {
  if (list.empty()) std::cout << "No camera is plugged in.\n";
  for (const bus::CameraStatus& camera : list) {
    std::cout << camera.serial << "  revision " << camera.revision << ", type " << int{camera.peripheralType} << ", "
              << (camera.holder == 0 ? "free" : "held by process " + std::to_string(camera.holder)) << ", "
              << camera.commands << " commands, " << camera.storage << "\n";
  }
}

int Status(const StatusArguments& arguments) {
  const std::vector<bus::CameraStatus> list = Fetch(arguments.socket);
  arguments.json ? PrintJson(list) : PrintText(list);
  return kExitDone;
}

}  // namespace

void AddStatus(CLI::App& app, Action& chosen) {
  CLI::App* verb = app.add_subcommand("status", "List the cameras of a bus");
  const auto arguments = std::make_shared<StatusArguments>();
  AddSocketOption(*verb, arguments->socket);
  verb->add_flag("--json", arguments->json, "As JSON");
  verb->callback([&chosen, arguments] { chosen = [arguments] { return Status(*arguments); }; });
}

}  // namespace vcam::program
