#include "apps/tool/Tool.h"

#include <gtest/gtest.h>

#include <array>

#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

TEST(ToolTest, VersionAndHelpNeedNoCamera) {
  EXPECT_EQ(RunTool(Kelva(), std::array<const char*, 1>{"--version"}), 0);
  EXPECT_EQ(RunTool(Kelva(), std::array<const char*, 2>{"get", "--help"}), 0);
}

TEST(ToolTest, WhatIsNotUnderstoodEndsWithTwo) {
  EXPECT_EQ(RunTool(Kelva(), {}), 2);
  EXPECT_EQ(RunTool(Kelva(), std::array<const char*, 1>{"frob"}), 2);
  EXPECT_EQ(RunTool(Kelva(), std::array<const char*, 3>{"list", "--timeout", "soon"}), 2);
}

TEST(ToolTest, ABusThatNobodyServesIsAFailureAndNotThisMachine) {
  EXPECT_EQ(RunTool(Kelva(), std::array<const char*, 3>{"list", "--virtual", "/nowhere/bus"}), 1);
}

}  // namespace
}  // namespace apps
