// Prints a camera's numbers as people read them.
#include "apps/kelva/verbs/Number.h"

#include <array>
#include <charconv>
#include <cmath>

namespace apps {
namespace {

template <typename Value>
std::string Text(Value value) {
  std::array<char, 64> text{};
  const auto result = std::to_chars(text.data(), text.data() + text.size(), value);
  return std::string(text.data(), result.ptr);
}

}  // namespace

std::string Shortest(float value) {
  return Text(value);
}

std::string Shortest(double value) {
  return Text(value);
}

Json NumberOf(float value) {
  if (!std::isfinite(value)) return Json();
  const std::string text = Text(value);
  double number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

}  // namespace apps
