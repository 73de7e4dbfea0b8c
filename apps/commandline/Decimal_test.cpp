#include "apps/commandline/Decimal.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>

#include "base/testing/RandomSeed.h"

#ifdef __cpp_lib_to_chars
#include <charconv>
#endif

namespace apps {
namespace {

TEST(DecimalTest, ANumberHasItsShortestText) {
  EXPECT_EQ(Shortest(0.87F), "0.87");
  EXPECT_EQ(Shortest(0.0), "0");
  EXPECT_EQ(Shortest(-0.0), "-0");
  EXPECT_EQ(Shortest(0.1), "0.1");
  EXPECT_EQ(Shortest(1.0 / 3), "0.3333333333333333");
  EXPECT_EQ(Shortest(100000.0), "1e+05");
  EXPECT_EQ(Shortest(120000.0), "120000");
  EXPECT_EQ(Shortest(0.001), "0.001");
  EXPECT_EQ(Shortest(0.0001), "1e-04");
  EXPECT_EQ(Shortest(1e-7), "1e-07");
  EXPECT_EQ(Shortest(9007199254740993.0), "9007199254740992");
  EXPECT_EQ(Shortest(1e300), "1e+300");
  EXPECT_EQ(Shortest(5e-324), "5e-324");
  EXPECT_EQ(Shortest(-12.5), "-12.5");
}

TEST(DecimalTest, WhatIsNotFiniteIsAWord) {
  EXPECT_EQ(Shortest(std::numeric_limits<double>::infinity()), "inf");
  EXPECT_EQ(Shortest(-std::numeric_limits<float>::infinity()), "-inf");
  EXPECT_EQ(Shortest(std::numeric_limits<double>::quiet_NaN()), "nan");
}

TEST(DecimalTest, ATextThatIsADecimalNumberIsRead) {
  EXPECT_EQ(ParseDecimal("0"), 0);
  EXPECT_EQ(ParseDecimal("-0.0e9"), 0);
  EXPECT_EQ(ParseDecimal("2.5"), 2.5);
  EXPECT_EQ(ParseDecimal(".5"), 0.5);
  EXPECT_EQ(ParseDecimal("5."), 5);
  EXPECT_EQ(ParseDecimal("-1e3"), -1000);
  EXPECT_EQ(ParseDecimal("1E+2"), 100);
}

TEST(DecimalTest, AnotherTextIsNone) {
  for (const char* text : {"", "-", ".", "+1", " 1", "1 ", "1,5", "0x10", "1e", "1e+", "e5", "--1", "inf", "nan",
                           "1_000", "1e999", "1e-999", "1.5.2"}) {
    EXPECT_EQ(ParseDecimal(text), std::nullopt) << text;
  }
  EXPECT_EQ(ParseDecimal(std::string_view("1\0", 2)), std::nullopt);
}

TEST(DecimalTest, APowerOfTwoComesBackToo) {
  for (int exponent = -1074; exponent < 1024; ++exponent) {
    const double value = std::ldexp(1.0, exponent);
    ASSERT_EQ(ParseDecimal(Shortest(value)), value);
  }
}
#ifdef __cpp_lib_to_chars
// Where the C++ library has these calls, they say the same.
template <typename Value>
std::string ByLibrary(Value value) {
  std::array<char, 64> text{};
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

// At a power of two the neighbours lie unevenly, and the library finds one digit less now and then.
template <typename Value>
bool IsPowerOfTwo(Value value) {
  int exponent = 0;
  return std::abs(std::frexp(value, &exponent)) == Value{0.5};
}

template <typename Value, typename Bits>
void CompareSome() {
  std::mt19937_64 random(base::RandomSeed());
  constexpr int kRounds = 20'000;
  for (int i = 0; i < kRounds; ++i) {
    const std::array<Value, 3> values = {std::bit_cast<Value>(static_cast<Bits>(random())),
                                         static_cast<Value>(static_cast<std::int64_t>(random() >> (random() % 64))),
                                         static_cast<Value>(static_cast<double>(random() % 1'000'000) / 1000)};
    for (const Value value : values) {
      if (!std::isfinite(value) || IsPowerOfTwo(value)) continue;
      ASSERT_EQ(Shortest(value), ByLibrary(value));
      double read = 0;
      const std::string text = ByLibrary(value);
      std::from_chars(text.data(), text.data() + text.size(), read);
      ASSERT_EQ(ParseDecimal(text), read) << text;
    }
  }
}

TEST(DecimalTest, ItIsWrittenAndReadAsTheLibraryDoes) {
  CompareSome<double, std::uint64_t>();
  CompareSome<float, std::uint32_t>();
}

TEST(DecimalTest, ATextOfItsLettersIsReadOnlyWhenTheLibraryReadsAll) {
  std::mt19937_64 random(base::RandomSeed());
  constexpr std::string_view kLetters = "0123456789..--+eE xn";
  constexpr int kRounds = 100'000;
  for (int i = 0; i < kRounds; ++i) {
    std::string text;
    for (std::uint64_t left = random() % 7; left > 0; --left) text += kLetters[random() % kLetters.size()];
    double read = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), read);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    ASSERT_EQ(ParseDecimal(text), whole ? std::optional(read) : std::nullopt) << text;
  }
}
#endif

}  // namespace
}  // namespace apps
