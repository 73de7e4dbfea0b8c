#ifndef KELVA_WIFI_TESTING_SWITCHES_H_
#define KELVA_WIFI_TESTING_SWITCHES_H_

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <locale>
#include <string>
#include <utility>
#include <vector>

#include "Camera.h"

namespace wifi_testing {

/// Switches exceptions off (or on) until the end of the scope.
class ExceptionsOff {
 public:
  explicit ExceptionsOff(bool throwing = false) : before_(std::exchange(Camera::throwExceptions_, throwing)) {}
  ~ExceptionsOff() { Camera::throwExceptions_ = before_; }
  ExceptionsOff(const ExceptionsOff&) = delete;
  ExceptionsOff& operator=(const ExceptionsOff&) = delete;

 private:
  bool before_;
};

/// The text of the exception that `command` throws, with its class: "CameraError: ...". Empty when it throws nothing.
template <typename Command>
std::string Thrown(Command command) {
  try {
    command();
  } catch (const CameraTransferError& error) {
    return std::string("CameraTransferError: ") + error.what();
  } catch (const CameraError& error) {
    return std::string("CameraError: ") + error.what();
  }
  return "";
}

/// A progress callback and what it was told; its own address is the context.
struct Progress {
  static void Report(void* context, float fraction) { static_cast<Progress*>(context)->fractions.push_back(fraction); }
  std::vector<float> fractions;
};

/// The two words with which a fatal assertion ends the process, on standard error.
inline auto Assertion(const char* expression, const char* function) {
  return ::testing::AllOf(::testing::HasSubstr(expression), ::testing::HasSubstr(function));
}

#define EXPECT_FATAL(statement, expression, function) \
  EXPECT_EXIT(statement, ::testing::KilledBySignal(SIGABRT), ::wifi_testing::Assertion(expression, function))

/// While it lives, the program's locale writes numbers with their digits in groups of three.
class GroupedDigits {
 public:
  GroupedDigits() : before_(std::locale::global(std::locale(std::locale::classic(), new Grouping))) {}
  ~GroupedDigits() { std::locale::global(before_); }
  GroupedDigits(const GroupedDigits&) = delete;
  GroupedDigits& operator=(const GroupedDigits&) = delete;

 private:
  class Grouping : public std::numpunct<char> {
    std::string do_grouping() const override { return "\3"; }
  };
  std::locale before_;
};

}  // namespace wifi_testing

#endif  // KELVA_WIFI_TESTING_SWITCHES_H_
