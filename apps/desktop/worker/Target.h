#ifndef KELVA_APPS_DESKTOP_WORKER_TARGET_H_
#define KELVA_APPS_DESKTOP_WORKER_TARGET_H_

#include <span>
#include <string>

#include "apps/camera/FileSizes.h"
#include "apps/commandline/Json.h"
#include "apps/import/Others.h"
#include "src/wifi/DcfObj.h"

namespace apps {

/// Where pictures would go, as the window's user set it.
struct Target {
  std::string folder;
  std::string pattern;  ///< empty for the default
  std::string types;    ///< "jpg,raw"; empty for all
};

/// What is known of a camera so far.
struct OnCamera {
  std::string serial;
  std::span<const DcfObj> pictures;
  std::span<const FileSizes> sizes = {};  ///< empty until all are known
  const OtherFiles* others = nullptr;     ///< null until they are known
};

/// The members of the event `target`: what would be new in the folder, or why it cannot be used. Changes nothing there.
Json TargetMembers(const Target& target, const OnCamera& camera);

}  // namespace apps

#endif  // KELVA_APPS_DESKTOP_WORKER_TARGET_H_
