#ifndef KELVA_BASE_ASCII_H_
#define KELVA_BASE_ASCII_H_

#include <algorithm>
#include <string>

// Changes the case of ASCII letters, whatever the locale, and of no other bytes.

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
