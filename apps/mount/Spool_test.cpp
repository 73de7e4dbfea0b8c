#include "apps/mount/Spool.h"

#include <gtest/gtest.h>

#include <string>

#include "apps/commandline/Failure.h"

namespace apps {
namespace {

std::string Text(const Spool& spool, std::uint64_t offset, std::size_t count) {
  std::string text(count, '?');
  spool.Read(offset, text);
  return text;
}

TEST(SpoolTest, WhatWasWrittenIsReadFromAnyPlace) {
  Spool spool;
  spool.Append(std::string("abc"));
  spool.Append(std::string("def"));
  EXPECT_EQ(spool.Size(), 6U);
  EXPECT_TRUE(spool.Has(6));
  EXPECT_FALSE(spool.Has(7));
  EXPECT_EQ(Text(spool, 2, 3), "cde");
  spool.Write(8, std::string("x"));
  EXPECT_EQ(Text(spool, 5, 4), std::string("f\0\0x", 4));
  spool.Resize(2);
  EXPECT_EQ(spool.Size(), 2U);
  EXPECT_THROW(Text(spool, 0, 3), Failure);
}

}  // namespace
}  // namespace apps
