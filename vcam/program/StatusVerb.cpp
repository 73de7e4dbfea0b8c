// `kelva-vcam status`: the cameras of a bus.
#include <stdexcept>

#include "vcam/program/Verbs.h"

namespace vcam::program {
namespace {

std::vector<bus::CameraStatus> Fetch(const apps::Invocation& call) {
  const auto list = bus::Decode<std::vector<bus::CameraStatus>>(AskBus(call, bus::Kind::kStatus, {}).payload);
  if (!list) throw std::runtime_error("The bus sent a status that cannot be read; use programs of one release.");
  return *list;
}

apps::Json JsonOf(const bus::CameraStatus& camera) {
  apps::Json members = apps::Json::Object();
  members.Set("serial", camera.serial).Set("vendor", camera.vendor).Set("product", camera.product);
  members.Set("revision", camera.revision).Set("type", camera.peripheralType).SetBytes("storage", camera.storage);
  members.Set("holder", camera.holder == 0 ? apps::Json() : apps::Json(camera.holder));
  return std::move(members.Set("commands", camera.commands));
}

std::string TextOf(const bus::CameraStatus& camera) {
  const std::string holder = camera.holder == 0 ? "free" : "held by process " + std::to_string(camera.holder);
  return camera.serial + "  revision " + camera.revision + ", type " + std::to_string(camera.peripheralType) + ", " +
         holder + ", " + std::to_string(camera.commands) + " commands, " + camera.storage + "\n";
}

apps::ExitCode Status(apps::Context& context) {
  apps::Json cameras = apps::Json::Array();
  std::string text;
  for (const bus::CameraStatus& camera : Fetch(context.call)) {
    cameras.Push(JsonOf(camera));
    text += TextOf(camera);
  }
  context.Result(apps::Json::Object().Set("cameras", std::move(cameras)),
                 text.empty() ? "No camera is plugged in.\n" : text);
  return apps::ExitCode::kDone;
}

constexpr apps::Option kOptions[] = {kBus};
constexpr apps::Example kExamples[] = {{"PROGRAM status --virtual /tmp/bus", "One line for each camera."}};
constexpr apps::Verb kVerbs[] = {
    {"status",
     "List the cameras of a bus",
     {},
     kOptions,
     "Shows each camera's revision, type and storage, how many commands it has had, and which process holds it.",
     "cameras: one object each: serial, vendor, product, revision, type, storage, holder (the process, or null), "
     "commands",
     kExamples,
     Status},
};

}  // namespace

std::span<const apps::Verb> StatusVerbs() {
  return kVerbs;
}

}  // namespace vcam::program
