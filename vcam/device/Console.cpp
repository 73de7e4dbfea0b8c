// The camera's console log, of which the host takes piece after piece.
#include "vcam/device/Console.h"

#include <algorithm>

namespace vcam {

void Console::Log(std::string_view line) {
  const std::size_t start = text_.size();
  text_ += line.substr(0, kCapacity / 2);
  std::replace_if(
      text_.begin() + static_cast<std::ptrdiff_t>(start), text_.end(),
      [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, '?');
  text_ += '\n';
  while (text_.size() > kCapacity) text_.erase(0, text_.find('\n') + 1);
}

std::string Console::Take(std::size_t length) {
  std::string piece = text_.substr(0, length);
  text_.erase(0, piece.size());
  return piece;
}

}  // namespace vcam
