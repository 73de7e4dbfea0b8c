#ifndef KELVA_CLI_CAMERA_SOURCE_H_
#define KELVA_CLI_CAMERA_SOURCE_H_

#include <optional>
#include <string>

namespace kelva {

/// Decides where cameras come from: the virtual bus behind this socket (or that of KELVA_VIRTUAL), otherwise this machine.
/// Neither takes the place of the other when it fails. Throws Failure.
void ChooseCameraSource(const std::optional<std::string>& socket);

}  // namespace kelva

#endif  // KELVA_CLI_CAMERA_SOURCE_H_
