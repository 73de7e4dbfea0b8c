#include "base/FirstException.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace base {
namespace {

TEST(FirstExceptionTest, EachActionRunsAndTheFirstExceptionGoesOn) {
  std::string ran;
  FirstException exceptions;
  exceptions.Try([&] { ran += 'a'; });
  exceptions.Try([&] {
    ran += 'b';
    throw std::runtime_error("b");
  });
  exceptions.Try([&] {
    ran += 'c';
    throw std::logic_error("c");
  });
  EXPECT_EQ(ran, "abc");
  EXPECT_THROW(exceptions.Rethrow(), std::runtime_error);
}

TEST(FirstExceptionTest, NothingIsThrownWhenNothingWas) {
  FirstException exceptions;
  exceptions.Try([] {});
  EXPECT_NO_THROW(exceptions.Rethrow());
}

}  // namespace
}  // namespace base
