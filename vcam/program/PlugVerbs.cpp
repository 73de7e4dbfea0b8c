// `kelva-vcam plug` and `kelva-vcam unplug`: cameras come to a bus and leave it.
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "apps/commandline/Failure.h"
#include "vcam/program/StorageNote.h"
#include "vcam/program/Verbs.h"

namespace vcam::program {
namespace {

/// The folder as an absolute path: the bus may run in another working directory. Throws when it cannot be a storage.
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

apps::ExitCode Plug(apps::Context& context) {
  const apps::Invocation& call = context.call;
  bus::PlugRequest request;
  request.serial = *call.Value("serial");
  request.peripheralType = PeripheralType(call);
  request.storage = UsableStorage(*call.Value("storage"));
  request.revision = call.Value("revision").value_or("");
  request.catalogue = call.Value("catalogue").value_or("");
  if (call.Has("forward-only")) request.traits |= bus::kForwardOnly;
  if (call.Has("no-keys")) request.traits |= bus::kWithoutKeys;
  if (const auto seed = OpaqueSeed(call)) {
    request.traits |= bus::kOpaque;
    request.seed = *seed;
  }
  AskBus(call, bus::Kind::kPlug, bus::Encode(request));
  if (const std::string note = StorageNote(request.storage); !note.empty()) context.reporter.Note(note);
  apps::Json members = apps::Json::Object().Set("serial", request.serial);
  context.Result(std::move(members.SetBytes("storage", request.storage)),
                 "Plugged in " + request.serial + " with " + request.storage + ".\n");
  return apps::ExitCode::kDone;
}

apps::ExitCode Unplug(apps::Context& context) {
  const apps::Invocation& call = context.call;
  const auto option = call.Value("serial");
  if (option.has_value() == !call.words.empty()) {
    throw apps::Failure(
        apps::ExitCode::kUsage,
        "`kelva-vcam unplug` needs one --serial SERIAL; `kelva-vcam help unplug` shows how it is used.");
  }
  const std::string serial = option ? *option : call.words[0];
  AskBus(call, bus::Kind::kUnplug, bus::EncodeText(serial));
  context.Result(apps::Json::Object().Set("serial", serial), "Unplugged " + serial + ".\n");
  return apps::ExitCode::kDone;
}

constexpr apps::Option kPlugOptions[] = {kBus,       kNewSerial,   kStorage, kRevision,    kType,
                                         kCatalogue, kForwardOnly, kNoKeys,  kOpaqueOption};
constexpr apps::Option kUnplugOptions[] = {kBus, kSerial};
constexpr apps::Argument kUnplugWords[] = {
    {"SERIAL", "The serial number, instead of --serial.", apps::Argument::Count::kOptional, apps::Offer::kSerial}};
constexpr apps::Example kPlugExamples[] = {
    {"PROGRAM plug --virtual /tmp/bus --serial K100 --storage ~/card", "Plug in a camera with the pictures in ~/card."},
    {"PROGRAM plug --virtual /tmp/bus --serial K200 --storage ~/card --type 5 --revision Q42",
     "Plug in a camera of the kind that is taken for a CD drive."}};
constexpr apps::Example kUnplugExamples[] = {{"PROGRAM unplug --virtual /tmp/bus --serial K100", "Unplug it."}};

constexpr apps::Verb kVerbs[] = {
    {"plug",
     "Plug in a camera over a storage folder",
     {},
     kPlugOptions,
     "No kernel driver claims type 3. The _ms driver serves type 0. Type 5 with revision Q42 is the bad camera.",
     "serial: its USB serial number\nstorage: the folder, as an absolute path",
     kPlugExamples,
     Plug},
    {"unplug", "Unplug a camera, also in the middle of a command", kUnplugWords, kUnplugOptions,
     "A program that holds the camera sees it leave, as it would a camera whose cable is pulled.",
     "serial: the serial number of the camera", kUnplugExamples, Unplug},
};

}  // namespace

std::span<const apps::Verb> PlugVerbs() {
  return kVerbs;
}

}  // namespace vcam::program
