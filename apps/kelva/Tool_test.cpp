#include "apps/kelva/Tool.h"

#include <gtest/gtest.h>

#include <array>

namespace apps {
namespace {

TEST(ToolTest, VersionAndHelpNeedNoCamera) {
  EXPECT_EQ(RunTool(std::array<const char*, 1>{"--version"}), 0);
  EXPECT_EQ(RunTool(std::array<const char*, 2>{"get", "--help"}), 0);
}

TEST(ToolTest, WhatIsNotUnderstoodEndsWithTwo) {
  EXPECT_EQ(RunTool({}), 2);
  EXPECT_EQ(RunTool(std::array<const char*, 1>{"frob"}), 2);
  EXPECT_EQ(RunTool(std::array<const char*, 3>{"list", "--timeout", "soon"}), 2);
}

TEST(ToolTest, ABusThatNobodyServesIsAFailureAndNotThisMachine) {
  EXPECT_EQ(RunTool(std::array<const char*, 3>{"list", "--virtual", "/nowhere/bus"}), 1);
}

}  // namespace
}  // namespace apps
