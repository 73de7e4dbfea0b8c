#ifndef KELVA_VCAM_USBIP_CAMERA_MODEL_H_
#define KELVA_VCAM_USBIP_CAMERA_MODEL_H_

#include "vcam/camera/VirtualCamera.h"
#include "vcam/usbip/CableFaults.h"
#include "vcam/usbip/UsbCamera.h"

namespace vcam::usbip {

/// The virtual camera behind a USB cable. Both arguments are borrowed and must outlive every UsbCamera that is made of the
/// model; the faults armed on either of them work through the cable.
CameraModel ModelOf(VirtualCamera& camera, CableFaults& faults, Speed speed);

/// The device as hosts find it on the network: there is one, at bus id 1-1.
Offer OfferOf(Speed speed);

}  // namespace vcam::usbip

#endif  // KELVA_VCAM_USBIP_CAMERA_MODEL_H_
