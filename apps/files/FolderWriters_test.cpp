#include "apps/files/FolderWriters.h"

#include <gtest/gtest.h>

#include "apps/files/testing/Acl.h"

namespace apps {
namespace {

TEST(AclForWritersTest, EachWriterMayReadAndWriteAndNobodyElse) {
  const std::string folder = kVersion + Entry(1, 7) + Entry(2, 7, 1000) + Entry(2, 5, 1001) + Entry(4, 5) +
                             Entry(8, 7, 100) + Entry(0x10, 7) + Entry(0x20, 5);
  EXPECT_EQ(AclForWriters(folder, true), kVersion + Entry(1, 6) + Entry(2, 6, 1000) + Entry(2, 0, 1001) + Entry(4, 0) +
                                             Entry(8, 6, 100) + Entry(0x10, 6) + Entry(0x20, 0));
}

TEST(AclForWritersTest, TheMaskLimitsAllButOwnerAndOthers) {
  const std::string folder = kVersion + Entry(1, 7) + Entry(2, 7, 1000) + Entry(4, 7) + Entry(0x10, 5) + Entry(0x20, 7);
  EXPECT_EQ(AclForWriters(folder, true),
            kVersion + Entry(1, 6) + Entry(2, 0, 1000) + Entry(4, 0) + Entry(0x10, 6) + Entry(0x20, 6));
}

TEST(AclForWritersTest, AFileOfAnotherGroupLetsThatGroupNotIn) {
  const std::string folder = kVersion + Entry(1, 7) + Entry(4, 7) + Entry(0x10, 7) + Entry(0x20, 0);
  EXPECT_EQ(AclForWriters(folder, true), kVersion + Entry(1, 6) + Entry(4, 6) + Entry(0x10, 6) + Entry(0x20, 0));
  EXPECT_EQ(AclForWriters(folder, false), kVersion + Entry(1, 6) + Entry(4, 0) + Entry(0x10, 6) + Entry(0x20, 0));
}

TEST(AclForWritersTest, SomethingElseIsNoList) {
  EXPECT_EQ(AclForWriters("", true), "");
  EXPECT_EQ(AclForWriters(std::string("\3\0\0\0", 4), true), "");
  EXPECT_EQ(AclForWriters(kVersion + "1234", true), "");
}

}  // namespace
}  // namespace apps
