#ifndef KELVA_BASE_ASCII_H_
#define KELVA_BASE_ASCII_H_

#include <algorithm>
#include <string>
#include <string_view>

// ASCII text, whatever the locale: changes the case of letters and of no other bytes, and compares shapes.

namespace base {

inline char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline char Upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

inline std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char c) { return Lower(c); });
  return text;
}

inline std::string Upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char c) { return Upper(c); });
  return text;
}

/// Whether the text looks like `shape`, in which a 0 stands for any digit: "0000-00-00".
inline bool HasShape(std::string_view text, std::string_view shape) {
  return std::equal(text.begin(), text.end(), shape.begin(), shape.end(),
                    [](char c, char wanted) { return wanted == '0' ? c >= '0' && c <= '9' : c == wanted; });
}

}  // namespace base

#endif  // KELVA_BASE_ASCII_H_
