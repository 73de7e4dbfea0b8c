#ifndef KELVA_APPS_CAMERA_ATTACHED_H_
#define KELVA_APPS_CAMERA_ATTACHED_H_

#include <boost/shared_ptr.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/camera/Registry.h"
#include "apps/commandline/StdoutDiversion.h"
#include "apps/commandline/Verb.h"
#include "src/wifi/Camera.h"

namespace apps {

inline constexpr Option kSerialOption = {
    "serial", 's', "SERIAL",
    "The camera with this USB serial number, or - for the one without a number; KELVA_SERIAL sets it for all commands.",
    Offer::kSerial};
inline constexpr Option kVirtualOption = {
    .name = "virtual",
    .letter = 0,
    .value = "SOCKET",
    .help =
        "Look for cameras on the virtual bus of `kelva-vcam serve`, not on this machine; KELVA_VIRTUAL sets it for all "
        "commands.",
    .offer = Offer::kFile,
    .alias = "socket"};

/// One camera that is attached, not opened.
struct AttachedCamera {
  RegistryCamera facts;
  boost::shared_ptr<Camera> camera;
};

/// The cameras attached now. Throws Failure when the system refused the search.
std::vector<AttachedCamera> FindAttached(StdoutDiversion& diversion);

/// How many attached cameras the system took for a CD drive.
int CountUnusable();

/// The serial number asked for: from the option, else from KELVA_SERIAL. Nothing when the option is not given and the
/// variable is unset or empty. Throws Failure for an empty option.
std::optional<std::string> WantedSerial(const std::optional<std::string>& option);

/// The word that stands for the camera without a serial number.
inline constexpr std::string_view kWithoutSerial = "-";

/// A camera's serial number as --serial takes it: with that word where there is none.
std::string SerialWord(const RegistryCamera& camera);

/// Whether a camera is the one asked for; without a serial number asked for, each is.
bool IsWanted(const RegistryCamera& camera, const std::optional<std::string>& serial);

/// The camera that is meant. Throws Failure when none is attached, none has that number, or several do.
AttachedCamera Choose(std::vector<AttachedCamera> attached, const std::optional<std::string>& serial);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_ATTACHED_H_
