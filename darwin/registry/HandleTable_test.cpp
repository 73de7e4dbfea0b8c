#include "darwin/registry/HandleTable.h"

#include <gtest/gtest.h>

namespace darwin {
namespace {

class Thing final : public KernelObject {};

TEST(HandleTable, GivesOneNumberAndCountsItsReferences) {
  HandleTable table;
  const auto thing = std::make_shared<Thing>();
  const auto handle = table.Grant(thing);
  EXPECT_NE(handle, 0u);
  EXPECT_EQ(table.Grant(thing), handle);
  EXPECT_EQ(table.Handles(), 1u);
  EXPECT_EQ(table.References(), 2u);
}

TEST(HandleTable, TheLastReleaseHandsTheObjectBack) {
  HandleTable table;
  const auto thing = std::make_shared<Thing>();
  const auto handle = table.Grant(thing);
  table.Retain(handle);
  EXPECT_EQ(table.Release(handle), nullptr);
  EXPECT_EQ(table.Release(handle), thing);
  EXPECT_FALSE(table.Holds(handle));
  EXPECT_EQ(table.Handles(), 0u);
}

TEST(HandleTable, AKilledHandleIsHeldButLeadsNowhere) {
  HandleTable table;
  const auto thing = std::make_shared<Thing>();
  const auto dead = table.Grant(thing);
  EXPECT_EQ(table.Kill(thing.get()), thing);
  EXPECT_EQ(table.Kill(thing.get()), nullptr);
  EXPECT_TRUE(table.Holds(dead));
  EXPECT_EQ(table.Find(dead), nullptr);
  EXPECT_NE(table.Grant(thing), dead);
}

TEST(HandleTable, GivingBackADeadHandleLeavesTheObjectsNewNumberAlone) {
  HandleTable table;
  const auto thing = std::make_shared<Thing>();
  const auto dead = table.Grant(thing);
  table.Kill(thing.get());
  const auto fresh = table.Grant(thing);
  table.Release(dead);
  EXPECT_EQ(table.Find(fresh), thing);
  EXPECT_EQ(table.Grant(thing), fresh);
}

TEST(HandleTable, ZeroIsNeverHeld) {
  HandleTable table;
  EXPECT_FALSE(table.Holds(0));
  EXPECT_EQ(table.Find(0), nullptr);
}

}  // namespace
}  // namespace darwin
