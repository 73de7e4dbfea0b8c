#ifndef KELVA_DARWIN_UDEV_UNIT_READER_H_
#define KELVA_DARWIN_UDEV_UNIT_READER_H_

#include <libudev.h>

#include <optional>

#include "darwin/udev/ScsiUnit.h"

namespace darwin::udev {

/// Reads what sysfs shows of a "scsi_generic" or "scsi_device" entry now.
///
/// A camera is read at its generic node, since it is used through that. A bad camera is read at the unit itself: it is
/// there whether or not the generic driver is. Returns nothing for any other device, and for one that has gone
/// meanwhile.
std::optional<ScsiUnit> ReadUnit(udev_device* device);

}  // namespace darwin::udev

#endif  // KELVA_DARWIN_UDEV_UNIT_READER_H_
