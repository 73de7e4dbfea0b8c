#ifndef KELVA_VCAM_DEVICE_CONSOLE_H_
#define KELVA_VCAM_DEVICE_CONSOLE_H_

#include <string>
#include <string_view>

namespace vcam {

/// The camera's console log: lines that wait until the host has read them. When nobody reads, the oldest lines go
/// first.
class Console {
 public:
  /// Adds a line; control characters in it become '?'.
  void Log(std::string_view line);
  /// Takes at most `length` bytes from the front.
  std::string Take(std::size_t length);
  bool Empty() const { return text_.empty(); }

  static constexpr std::size_t kCapacity = 256 * 1024;

 private:
  std::string text_;
};

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_CONSOLE_H_
