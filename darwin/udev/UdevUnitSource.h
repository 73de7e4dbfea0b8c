#ifndef KELVA_DARWIN_UDEV_UDEV_UNIT_SOURCE_H_
#define KELVA_DARWIN_UDEV_UDEV_UNIT_SOURCE_H_

#include <string>

#include "darwin/udev/UdevHandles.h"
#include "darwin/udev/UnitSource.h"

namespace darwin::udev {

/// Units from libudev: its view of sysfs, and its monitor of the events that udev sends after its rules have run.
class UdevUnitSource : public UnitSource {
 public:
  /// Starts the monitor, so that nothing that comes during the first enumeration is missed.
  UdevUnitSource();

  std::vector<ScsiUnit> Enumerate() override;
  std::optional<ScsiUnit> Look(const std::string& path) override;
  std::uint64_t LatestSequence() override;
  Notice Receive() override;

  /// The monitor's descriptor; -1 when there is no monitor.
  int Descriptor() const;
  /// Why a camera that is plugged in would go unnoticed; empty when it is noticed.
  std::string WhyDeaf() const;

 private:
  void StartMonitor();
  Notice AfterNothingReceived(int error);

  UdevContext context_;
  UdevMonitor monitor_;
};

}  // namespace darwin::udev

#endif  // KELVA_DARWIN_UDEV_UDEV_UNIT_SOURCE_H_
