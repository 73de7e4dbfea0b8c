#include "apps/files/Tar.h"

#include <gtest/gtest.h>

#include <string>

namespace apps {
namespace {

TEST(TarTest, AFileIsAHeaderAndWholeBlocks) {
  Tar tar(0);
  tar.Add("a/b.txt", "hello");
  const std::string archive = tar.Finish();
  ASSERT_EQ(archive.size(), 4 * 512U);
  EXPECT_EQ(archive.substr(0, 8), std::string("a/b.txt\0", 8));
  EXPECT_EQ(archive.substr(100, 8), std::string("0000644\0", 8));
  EXPECT_EQ(archive.substr(124, 12), std::string("00000000005\0", 12));
  EXPECT_EQ(archive[156], '0');
  EXPECT_EQ(archive.substr(257, 8), std::string("ustar\0"
                                                "00",
                                                8));
  EXPECT_EQ(archive.substr(512, 6), std::string("hello\0", 6));
}

TEST(TarTest, TheCheckSumCountsItselfAsBlanks) {
  Tar tar(0);
  tar.Add("a", "");
  // 'a' 97, eight blanks 256, mode 0000644 350, owner and group 7 zeros each 672, size and time 11 zeros each 1056,
  // type '0' 48, "ustar" 559, version "00" 96: 3134, in octal 6076.
  EXPECT_EQ(tar.Finish().substr(148, 8), std::string("006076\0 ", 8));
}

TEST(TarTest, AFileOfAWholeBlockNeedsNoFilling) {
  Tar tar(0);
  tar.Add("a", std::string(512, 'x'));
  EXPECT_EQ(tar.Finish().size(), 4 * 512U);
}

TEST(TarTest, ALongNameIsCut) {
  Tar tar(0);
  tar.Add(std::string(300, 'n'), "");
  EXPECT_EQ(tar.Finish()[98], 'n');
  EXPECT_EQ(tar.Finish()[99], '\0');
}

}  // namespace
}  // namespace apps
