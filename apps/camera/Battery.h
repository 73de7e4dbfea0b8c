#ifndef KELVA_APPS_CAMERA_BATTERY_H_
#define KELVA_APPS_CAMERA_BATTERY_H_

#include <optional>
#include <string>

namespace apps {

/// Whether a battery level may be a number that a person reads. Its unit is the camera's, so this asks only for 0 or
/// something between a thousandth and a million.
bool IsReadableLevel(float level);

/// The level as a person reads it, "87.5", or its 32 bits, "0x3f400000", when it cannot be one.
std::string LevelText(float level);

/// The 32 bits of a level, "0x3f400000".
std::string LevelBits(float level);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_BATTERY_H_
