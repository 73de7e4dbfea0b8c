#ifndef KELVA_VCAM_USBIP_FAULT_TEXT_H_
#define KELVA_VCAM_USBIP_FAULT_TEXT_H_

#include <string>
#include <string_view>

#include "vcam/camera/VirtualCamera.h"
#include "vcam/usbip/WireFaults.h"

namespace vcam::usbip {

/// Arms the fault that `text` names, NAME or NAME@N, on the camera or on its cable, whichever knows it; N is 1 when it is
/// not given. Throws std::runtime_error with one sentence when there is no such fault or N is no positive number.
void ArmByText(std::string_view text, VirtualCamera& camera, WireFaults& cable);

/// The names of all faults, of the camera and of the cable, with commas between them.
std::string FaultNames();

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_FAULT_TEXT_H_
