#include "CameraError.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace {

TEST(CameraError, DefaultTextIsCameraErrorWithAFullStop) {
  EXPECT_STREQ(CameraError().what(), "Camera error.");
}

TEST(CameraError, MessageFollowsThePrefixAndOneBlank) {
  EXPECT_STREQ(CameraError("Camera not found.").what(), "Camera error: Camera not found.");
}

TEST(CameraError, EmptyMessageKeepsTheTrailingBlank) {
  EXPECT_STREQ(CameraError(std::string()).what(), "Camera error: ");
}

TEST(CameraTransferError, TextsAreThoseOfTheBase) {
  EXPECT_STREQ(CameraTransferError().what(), "Camera error.");
  EXPECT_STREQ(CameraTransferError("x").what(), "Camera error: x");
  EXPECT_STREQ(CameraTransferError("").what(), "Camera error: ");
}

TEST(CameraTransferError, IsCaughtAsCameraErrorAndAsStdException) {
  EXPECT_THROW(throw CameraTransferError(), CameraError);
  EXPECT_THROW(throw CameraTransferError("x"), std::exception);
  EXPECT_THROW(throw CameraError("x"), std::exception);
}

TEST(CameraError, WhatIsTheSamePointerEachTime) {
  const CameraError error("a text that is too long to lie inside the string object itself");
  EXPECT_EQ(static_cast<const void*>(error.what()), static_cast<const void*>(error.what()));
}

TEST(CameraError, CopyHasATextOfItsOwn) {
  for (const char* const text : {"short", "a text that is too long to lie inside the string object itself"}) {
    auto original = std::make_unique<CameraError>(text);
    const CameraError copy(*original);
    EXPECT_NE(static_cast<const void*>(copy.what()), static_cast<const void*>(original->what()));
    original.reset();
    EXPECT_EQ(copy.what(), std::string("Camera error: ") + text);
  }
}

TEST(CameraError, AssignmentTakesThePointerAgain) {
  CameraError target("first, a text that is too long to lie inside the string object itself");
  auto source = std::make_unique<CameraError>("second");
  target = *source;
  source.reset();
  EXPECT_STREQ(target.what(), "Camera error: second");
}

TEST(CameraError, AssignmentToItselfKeepsTheText) {
  CameraError error("x");
  const CameraError& same = error;
  error = same;
  EXPECT_STREQ(error.what(), "Camera error: x");
}

TEST(CameraError, MoveLeavesAReadableText) {
  CameraError source("short");
  const CameraError target(std::move(source));
  EXPECT_STREQ(target.what(), "Camera error: short");
}

TEST(CameraTransferError, CopyHasATextOfItsOwn) {
  auto original = std::make_unique<CameraTransferError>("gone");
  CameraTransferError copy(*original);
  CameraTransferError assigned;
  assigned = copy;
  original.reset();
  EXPECT_STREQ(copy.what(), "Camera error: gone");
  EXPECT_STREQ(assigned.what(), "Camera error: gone");
}

TEST(CameraError, MessageMayHoldLineFeeds) {
  EXPECT_STREQ(CameraTransferError("Transfer error\nCDB=[]\n").what(), "Camera error: Transfer error\nCDB=[]\n");
}

TEST(CameraError, HoldsAStringAndAPointerAndNothingElse) {
  EXPECT_EQ(sizeof(CameraError), sizeof(void*) + sizeof(std::string) + sizeof(const char*));
  EXPECT_EQ(sizeof(CameraTransferError), sizeof(CameraError));
  EXPECT_TRUE((std::is_base_of_v<std::exception, CameraError>));
  EXPECT_TRUE((std::is_base_of_v<CameraError, CameraTransferError>));
  EXPECT_TRUE(std::has_virtual_destructor_v<CameraError>);
  EXPECT_TRUE(noexcept(std::declval<const CameraError&>().what()));
}

}  // namespace
