#ifndef KELVA_DARWIN_UDEV_UNIT_SOURCE_H_
#define KELVA_DARWIN_UDEV_UNIT_SOURCE_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "darwin/udev/ScsiUnit.h"

namespace darwin::udev {

/// One message of the monitor.
struct Notice {
  enum class Kind {
    kNothing,  ///< the queue is empty
    kSeen,     ///< a device has come or changed
    kGone,     ///< a device has gone
    kLost,     ///< messages were lost: only a new enumeration tells what is there
  };
  Kind kind = Kind::kNothing;
  std::string path = {};
  /// The kernel's running number of the event; 0 when it gave none.
  std::uint64_t sequence = 0;
  /// For kSeen: the camera that sysfs shows at `path` now; nothing when there is none.
  std::optional<ScsiUnit> unit = {};
};

/// Where units are found and where news of them comes from.
class UnitSource {
 public:
  virtual ~UnitSource() = default;
  /// The units of this maker that are present now.
  virtual std::vector<ScsiUnit> Enumerate() = 0;
  /// The unit at a device path now; nothing when there is none.
  virtual std::optional<ScsiUnit> Look(const std::string& path) = 0;
  /// The number of the latest event that the kernel has sent; 0 when it does not say.
  virtual std::uint64_t LatestSequence() = 0;
  /// The next message. Never blocks.
  virtual Notice Receive() = 0;
};

}  // namespace darwin::udev

#endif  // KELVA_DARWIN_UDEV_UNIT_SOURCE_H_
