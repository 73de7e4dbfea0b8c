// A system whose kernel takes no USB device from a program has no `kelva-vcam usbip`.
#include "vcam/program/Verbs.h"

namespace vcam::program {

std::span<const apps::Verb> UsbipVerbs() {
  return {};
}

}  // namespace vcam::program
