// Finding the cameras that are attached, and choosing the one that a command means.

#include "apps/camera/Attached.h"

#include <cstdlib>
#include <utility>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"

namespace apps {
namespace {

std::string Shown(const AttachedCamera& camera) {
  return camera.facts.serial.empty() ? "one without a serial number (-)" : Printable(camera.facts.serial);
}

std::string Serials(const std::vector<AttachedCamera>& cameras) {
  std::string list;
  for (const AttachedCamera& camera : cameras) list += (list.empty() ? "" : ", ") + Shown(camera);
  return list;
}

}  // namespace

std::vector<AttachedCamera> FindAttached(StdoutDiversion& diversion) {
  const std::vector<boost::shared_ptr<Camera>> cameras = Camera::EnumerateCameras(false, "", false, 0);
  // The library prints a refused search to standard output and returns what it found before.
  const std::string complaint = diversion.Taken();
  if (!complaint.empty()) {
    throw Failure(ExitCode::kFailed, "The system refused to search for cameras (" +
                                         Printable(complaint.substr(0, complaint.find('\n'))) +
                                         "); `kelva doctor` looks for the cause.");
  }
  std::vector<AttachedCamera> attached;
  attached.reserve(cameras.size());
  for (const boost::shared_ptr<Camera>& camera : cameras) attached.push_back({FactsOf(*camera), camera});
  return attached;
}

// The library reports those present during the call.
int CountUnusable() {
  int count = 0;
  Camera::ListenForBadCameraAttach([](void* counter) { ++*static_cast<int*>(counter); }, &count);
  return count;
}

std::optional<std::string> WantedSerial(const std::optional<std::string>& option) {
  if (option) {
    if (option->empty()) throw Failure(ExitCode::kUsage, "--serial needs a serial number; `kelva list` shows them.");
    return option;
  }
  const char* variable = std::getenv("KELVA_SERIAL");
  if (variable == nullptr || *variable == '\0') return std::nullopt;
  return variable;
}

std::string SerialWord(const RegistryCamera& camera) {
  return camera.serial.empty() ? std::string(kWithoutSerial) : camera.serial;
}

bool IsWanted(const RegistryCamera& camera, const std::optional<std::string>& serial) {
  return !serial || SerialWord(camera) == *serial;
}

AttachedCamera Choose(std::vector<AttachedCamera> attached, const std::optional<std::string>& serial) {
  if (attached.empty()) {
    throw Failure(ExitCode::kNoCamera,
                  "No camera is attached; plug one in and switch it on, or let `kelva doctor` say why it is not seen.");
  }
  if (serial) {
    const std::string all = Serials(attached);
    std::erase_if(attached, [&serial](const AttachedCamera& camera) {
      return *serial == kWithoutSerial ? !camera.facts.serial.empty() : !camera.camera->CompareSn(serial->c_str());
    });
    if (attached.empty()) {
      throw Failure(ExitCode::kNoCamera,
                    "No camera with the serial number " + Printable(*serial) + " is attached; attached: " + all + ".");
    }
  }
  if (attached.size() == 1) return std::move(attached.front());
  throw Failure(ExitCode::kUsage, std::to_string(attached.size()) + " cameras are attached: " + Serials(attached) +
                                      "; choose one with --serial or KELVA_SERIAL.");
}

}  // namespace apps
