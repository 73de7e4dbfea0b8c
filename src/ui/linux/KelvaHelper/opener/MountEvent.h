#ifndef KELVA_UI_LINUX_KELVA_HELPER_OPENER_MOUNT_EVENT_H_
#define KELVA_UI_LINUX_KELVA_HELPER_OPENER_MOUNT_EVENT_H_

#include <map>
#include <optional>
#include <string>

namespace opener {

/// The members of a JSON object that is one line, all of them plain values: a string without its quotes and escapes,
/// anything else as it is written. Nothing when the line is something else.
std::optional<std::map<std::string, std::string>> ReadEvent(const std::string& line);

/// A camera that kelva-mount shows as a folder.
struct Mounted {
  std::string path;
  std::string serial;
  /// It was a folder before kelva-mount was run.
  bool before = false;
};

/// The camera of an event "mounted"; nothing for other events.
std::optional<Mounted> ReadMounted(const std::map<std::string, std::string>& event);

}  // namespace opener

#endif  // KELVA_UI_LINUX_KELVA_HELPER_OPENER_MOUNT_EVENT_H_
