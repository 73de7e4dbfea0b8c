// Decimal numbers with a fraction, without <charconv>: some systems' C++ libraries have it for whole numbers alone.
#include "apps/commandline/Decimal.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace apps {
namespace {

// No program here leaves the C locale, in which both calls write and read a point.
double Read(const char* text, double) {
  return std::strtod(text, nullptr);
}
float Read(const char* text, float) {
  return std::strtof(text, nullptr);
}

std::string Print(const char* format, int precision, double value) {
  constexpr std::size_t kLongest = 400;  // the largest number has 309 digits before the point
  std::array<char, kLongest> text{};
  const int size = std::snprintf(text.data(), text.size(), format, precision, value);
  return {text.data(), static_cast<std::size_t>(size)};
}

// "d.ddde+XX" with as few digits as tell the value from its neighbours.
template <typename Value>
std::string Scientific(Value value) {
  for (int digits = 1; digits < std::numeric_limits<Value>::max_digits10; ++digits) {
    std::string text = Print("%.*e", digits - 1, value);
    if (Read(text.c_str(), value) == value) return text;
  }
  return Print("%.*e", std::numeric_limits<Value>::max_digits10 - 1, value);
}

template <typename Value>
std::string ShortestOf(Value value) {
  if (!std::isfinite(value)) return Print("%.*f", 0, value);
  std::string scientific = Scientific(value);
  const std::size_t mark = scientific.find('e');
  const int exponent = std::atoi(scientific.c_str() + mark + 1);
  const auto digits =
      static_cast<int>(std::count_if(scientific.begin(), scientific.begin() + static_cast<std::ptrdiff_t>(mark),
                                     [](unsigned char c) { return std::isdigit(c) != 0; }));
  // With an exponent: its four characters, and a point behind the first of several digits. Without: zeros in place of them.
  const int last = exponent - (digits - 1);
  const bool alone = digits == 1;
  if (last > (alone ? 4 : 5) || last < -(digits + (alone ? 2 : 3))) return scientific;
  return Print("%.*f", std::max(-last, 0), value);
}

// Moves over the digits at the start of a text and returns how many they were.
std::size_t TakeDigits(std::string_view& text) {
  const std::size_t count = std::min(text.find_first_not_of("0123456789"), text.size());
  text.remove_prefix(count);
  return count;
}

bool IsDecimal(std::string_view text) {
  if (text.starts_with('-')) text.remove_prefix(1);
  std::size_t digits = TakeDigits(text);
  if (text.starts_with('.')) {
    text.remove_prefix(1);
    digits += TakeDigits(text);
  }
  if (digits == 0) return false;
  if (!text.starts_with('e') && !text.starts_with('E')) return text.empty();
  text.remove_prefix(1);
  if (text.starts_with('-') || text.starts_with('+')) text.remove_prefix(1);
  return TakeDigits(text) > 0 && text.empty();
}

bool IsZero(std::string_view text) {
  return text.substr(0, text.find_first_of("eE")).find_first_of("123456789") == std::string_view::npos;
}

}  // namespace

std::string Shortest(float value) {
  return ShortestOf(value);
}

std::string Shortest(double value) {
  return ShortestOf(value);
}

std::optional<double> ParseDecimal(std::string_view text) {
  if (!IsDecimal(text)) return std::nullopt;
  const double value = Read(std::string(text).c_str(), double{});
  if (!std::isfinite(value) || (value == 0 && !IsZero(text))) return std::nullopt;
  return value;
}

}  // namespace apps
