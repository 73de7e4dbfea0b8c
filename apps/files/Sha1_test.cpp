#include "apps/files/Sha1.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "apps/commandline/Output.h"
#include "base/FileDescriptor.h"
#include "base/SendAll.h"
#include "base/testing/UnnamedFile.h"

namespace apps {
namespace {

TEST(Sha1Test, KnownDigests) {
  EXPECT_EQ(Sha1(std::string("abc")), "a9993e364706816aba3e25717850c26c9cd0d89d");
  EXPECT_EQ(Sha1(std::string()), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
}

TEST(Sha1Test, PiecesGiveTheSumOfTheWhole) {
  Sha1Sum sum;
  for (const char letter : {'a', 'b', 'c'}) sum.Add(std::span(&letter, 1));
  EXPECT_EQ(sum.Take(), "a9993e364706816aba3e25717850c26c9cd0d89d");
  EXPECT_EQ(sum.Take(), "da39a3ee5e6b4b0d3255bfef95601890afd80709") << "begins anew";
}

TEST(Sha1Test, AFileIsReadFromItsStartWhereverItsOffsetIs) {
  const base::FileDescriptor file(base::test::UnnamedFile());
  ASSERT_EQ(base::WriteAll(file.Get(), std::string(1'000'000, 'a')), 0);
  EXPECT_EQ(Sha1OfFile(file.Get()), "34aa973cd4c4daa4f61eeb2bdbad27316534016f");
}

TEST(Sha1Test, TheErrorOfAnEarlierCallDoesNotCount) {
  const base::FileDescriptor file(base::test::UnnamedFile());
  errno = EINTR;
  EXPECT_EQ(Sha1OfFile(file.Get()), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
}

TEST(Sha1Test, AFileThatCannotBeReadHasNone) {
  EXPECT_EQ(Sha1OfFile(-1), std::nullopt);
}

TEST(Sha1Test, AKeyIsFortyHexadecimalDigits) {
  EXPECT_TRUE(IsKey("a9993e364706816aba3e25717850c26c9cd0d89D"));
  EXPECT_FALSE(IsKey("a9993e364706816aba3e25717850c26c9cd0d89"));
  EXPECT_FALSE(IsKey("a9993e364706816aba3e25717850c26c9cd0d89d0"));
  EXPECT_FALSE(IsKey("g9993e364706816aba3e25717850c26c9cd0d89d"));
}

}  // namespace
}  // namespace apps
