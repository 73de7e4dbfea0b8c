#ifndef KELVA_DARWIN_UDEV_UDEV_HANDLES_H_
#define KELVA_DARWIN_UDEV_UDEV_HANDLES_H_

#include <libudev.h>

#include <memory>

namespace darwin::udev {

struct UdevDeleter {
  void operator()(::udev* handle) const { udev_unref(handle); }
  void operator()(udev_device* handle) const { udev_device_unref(handle); }
  void operator()(udev_enumerate* handle) const { udev_enumerate_unref(handle); }
  void operator()(udev_monitor* handle) const { udev_monitor_unref(handle); }
};

/// Owners of libudev's counted objects.
using UdevContext = std::unique_ptr<::udev, UdevDeleter>;
using UdevDevice = std::unique_ptr<udev_device, UdevDeleter>;
using UdevEnumerate = std::unique_ptr<udev_enumerate, UdevDeleter>;
using UdevMonitor = std::unique_ptr<udev_monitor, UdevDeleter>;

}  // namespace darwin::udev

#endif  // KELVA_DARWIN_UDEV_UDEV_HANDLES_H_
