#ifndef KELVA_APPS_DOCTOR_LINUX_FACTS_H_
#define KELVA_APPS_DOCTOR_LINUX_FACTS_H_

#include <optional>
#include <string>
#include <vector>

#include "apps/doctor/Holder.h"

namespace apps::doctor {

/// How a camera answered one short question.
enum class Answer { kNotAsked, kAnswers, kSilent, kFails };

/// What the machine shows of one camera, from the cable upwards. Members above the first missing one are empty.
struct CameraFacts {
  std::string serial;
  /// The USB device's directory in sysfs; empty for a unit that is not attached by USB.
  std::string usbPath;
  /// A kernel driver has taken the USB interface.
  bool driverBound = false;
  /// The SCSI unit's directory in sysfs.
  std::string unitPath;
  int peripheralType = -1;
  std::string revision;
  /// The disc drive that a bad camera shows, such as "/dev/sr0"; empty for other units.
  std::string disc;
  /// Sectors of 512 bytes that the kernel carries in one command; nothing when it sets no limit of its own.
  std::optional<int> maxSectors;
  /// The node's path, such as "/dev/sg3", and its numbers.
  std::string node;
  int major = 0;
  int minor = 0;
  /// 0 when this user may read and write the node, otherwise an errno value.
  int nodeError = 0;
  /// Processes other than this one that hold the node.
  std::vector<Holder> holders;
  Answer answer = Answer::kNotAsked;
};

/// What the machine shows.
struct MachineFacts {
  std::vector<CameraFacts> cameras;
  bool udevRuns = false;
  /// The installed file with the udev rules of the kelva package; empty when there is none.
  std::string rulesFile;
  std::string user;
  bool userInPlugdev = false;
};

}  // namespace apps::doctor

#endif  // KELVA_APPS_DOCTOR_LINUX_FACTS_H_
