#ifndef KELVA_APPS_COMMANDLINE_DECIMAL_H_
#define KELVA_APPS_COMMANDLINE_DECIMAL_H_

#include <optional>
#include <string>
#include <string_view>

namespace apps {

/// The shortest decimal number that is the same value, with an exponent where that is shorter: 0.87, 1e-07. Written as
/// std::to_chars does, which the C++ library of some systems lacks for such numbers. "inf" and "nan" when not finite.
std::string Shortest(float value);
std::string Shortest(double value);

/// A decimal number: digits with or without a sign "-", a point and an exponent, and nothing else. Nothing for another text,
/// and for a number that is too large or too small to be told from 0.
std::optional<double> ParseDecimal(std::string_view text);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_DECIMAL_H_
