#include "OsxCameraError.h"

#include <execinfo.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "testing/FakeCalls.h"

// The call stack of this program, as the error sees it: frames 0, 1, 2 ... named "frame 0", "frame 1", ...

namespace {

struct Stack {
  int frames = 3;
  bool symbolises = true;
  int asked = 0;
};

Stack stack;

}  // namespace

// In place of the system's: the array of names is one block, as there.
extern "C" int backtrace(void** buffer, int size) noexcept {
  stack.asked = size;
  const int count = std::min(size, stack.frames);
  for (int i = 0; i < count; ++i) buffer[i] = reinterpret_cast<void*>(static_cast<std::size_t>(i) + 1);
  return count;
}

extern "C" char** backtrace_symbols(void* const* buffer, int size) noexcept {
  if (!stack.symbolises) return nullptr;
  const auto count = static_cast<std::size_t>(std::max(size, 0));
  constexpr std::size_t kWidth = 24;
  auto* const names = static_cast<char**>(std::malloc(count * (sizeof(char*) + kWidth) + 1));
  for (std::size_t i = 0; i < count; ++i) {
    names[i] = reinterpret_cast<char*>(names + count) + i * kWidth;
    std::snprintf(names[i], kWidth, "frame %d", static_cast<int>(reinterpret_cast<std::size_t>(buffer[i])) - 1);
  }
  return names;
}

namespace {

std::string TextWith(Stack wanted) {
  stack = wanted;
  return OsxCameraError("x").what();
}

TEST(OsxCameraError, AppendsTheStackWithoutTheConstructorInnermostFirst) {
  EXPECT_EQ(TextWith({3, true}), "OsxCameraError: x\nframe 1\nframe 2");
}

TEST(OsxCameraError, AppendsAtMostEightFrames) {
  EXPECT_EQ(TextWith({40, true}),
            "OsxCameraError: x\nframe 1\nframe 2\nframe 3\nframe 4\nframe 5\nframe 6\nframe 7\nframe 8");
  EXPECT_EQ(stack.asked, 9);
}

TEST(OsxCameraError, OfAStackOfOneFrameIsTheMessageAlone) {
  EXPECT_EQ(TextWith({1, true}), "OsxCameraError: x");
}

TEST(OsxCameraError, OfNoStackAtAllIsTheMessageAlone) {
  EXPECT_EQ(TextWith({0, true}), "OsxCameraError: x");
}

TEST(OsxCameraError, WithoutSymbolsIsTheMessageAlone) {
  EXPECT_EQ(TextWith({5, false}), "OsxCameraError: x");
}

TEST(OsxCameraError, OfAnEmptyMessageKeepsThePrefix) {
  stack = {1, true};
  EXPECT_STREQ(OsxCameraError("").what(), "OsxCameraError: ");
}

TEST(OsxCameraError, IsACameraErrorWhoseBaseTextIsTheDefault) {
  stack = {1, true};
  const OsxCameraError error("x");
  const CameraError& base = error;
  EXPECT_STREQ(base.what(), "OsxCameraError: x");
  EXPECT_STREQ(error.CameraError::what(), "Camera error.");
  EXPECT_THROW(throw OsxCameraError("x"), CameraError);
}

TEST(OsxCameraError, WhatIsTheSamePointerEachTime) {
  const OsxCameraError error("x");
  EXPECT_EQ(static_cast<const void*>(error.what()), static_cast<const void*>(error.what()));
}

TEST(OsxCameraError, ACopyHasTextsOfItsOwn) {
  stack = {1, true};
  auto original = std::make_unique<OsxCameraError>("first");
  const OsxCameraError copy(*original);
  OsxCameraError assigned("second");
  assigned = *original;
  EXPECT_NE(static_cast<const void*>(copy.what()), static_cast<const void*>(original->what()));
  original.reset();
  EXPECT_STREQ(copy.what(), "OsxCameraError: first");
  EXPECT_STREQ(assigned.what(), "OsxCameraError: first");
  EXPECT_STREQ(copy.CameraError::what(), "Camera error.");
}

TEST(OsxCameraError, AddsAMessageAndAPointerToItsBase) {
  EXPECT_EQ(sizeof(OsxCameraError), sizeof(CameraError) + sizeof(std::string) + sizeof(const char*));
}

}  // namespace
