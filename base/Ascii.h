#ifndef KELVA_BASE_ASCII_H_
#define KELVA_BASE_ASCII_H_

#include <algorithm>
#include <string>

// The case of ASCII letters, whatever the locale; other bytes stay as they are.

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

}  // namespace base

#endif  // KELVA_BASE_ASCII_H_
