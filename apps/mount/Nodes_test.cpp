#include "apps/mount/Nodes.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

ShownEntry Entry(const std::string& name, bool isFolder, std::uint64_t size = 0) {
  return {name, "", size, 0, isFolder};
}

TEST(NodesTest, AnEntryKeepsItsNumberAsLongAsTheKernelKnowsIt) {
  Nodes nodes;
  const auto folder = nodes.Tell(Nodes::kRoot, Entry("DCIM", true));
  const auto file = nodes.Tell(folder, Entry("A.JPG", false, 5));
  EXPECT_EQ(nodes.Tell(folder, Entry("A.JPG", false, 6)), file);
  EXPECT_EQ(nodes.Find(file)->size, 6U);
  nodes.Find(file)->isGone = true;
  nodes.Tell(folder, Entry("A.JPG", false, 6));
  EXPECT_FALSE(nodes.Find(file)->isGone);
  nodes.Forget(file, 1);
  EXPECT_EQ(nodes.PathOf(file), "I:\\DCIM\\A.JPG");
  EXPECT_EQ(nodes.PathOf(Nodes::kRoot), "I:");
  nodes.Forget(file, 1);
  EXPECT_NE(nodes.Find(file), nullptr);
  nodes.Forget(file, 1);
  EXPECT_EQ(nodes.Find(file), nullptr);
  EXPECT_NE(nodes.Tell(folder, Entry("A.JPG", false)), file);
  EXPECT_EQ(nodes.Count(), 3U);
}

TEST(NodesTest, AFileThatBecameAFolderIsAnotherOne) {
  Nodes nodes;
  const auto file = nodes.Tell(Nodes::kRoot, Entry("X", false));
  EXPECT_NE(nodes.Tell(Nodes::kRoot, Entry("X", true)), file);
}

TEST(NodesTest, WhatIsBelowAForgottenFolderHasNoPath) {
  Nodes nodes;
  const auto folder = nodes.Tell(Nodes::kRoot, Entry("DCIM", true));
  const auto file = nodes.Tell(folder, Entry("A.JPG", false));
  nodes.Forget(folder, 1);
  EXPECT_EQ(nodes.PathOf(file), "");
  nodes.Forget(Nodes::kRoot, 100);
  EXPECT_EQ(nodes.PathOf(Nodes::kRoot), "I:");
}

}  // namespace
}  // namespace apps
