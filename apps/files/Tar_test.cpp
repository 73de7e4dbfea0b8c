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
  EXPECT_EQ(archive.substr(100, 8), std::string("0000600\0", 8));
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
  // 'a' 97, eight blanks 256, mode 0000600 342, owner and group 7 zeros each 672, size and time 11 zeros each 1056,
  // type '0' 48, "ustar" 559, version "00" 96: 3126, in octal 6066.
  EXPECT_EQ(tar.Finish().substr(148, 8), std::string("006066\0 ", 8));
}

TEST(TarTest, AFileOfAWholeBlockNeedsNoFilling) {
  Tar tar(0);
  tar.Add("a", std::string(512, 'x'));
  EXPECT_EQ(tar.Finish().size(), 4 * 512U);
}

TEST(TarTest, ALongNameStandsWholeInAPaxHeader) {
  Tar tar(0);
  const std::string name = "dir/" + std::string(96, 'n');
  tar.Add(name, "x");
  const std::string archive = tar.Finish();
  // Header and record of the name, header and bytes of the file, two empty blocks.
  ASSERT_EQ(archive.size(), 6 * 512U);
  EXPECT_EQ(archive[156], 'x');
  EXPECT_EQ(archive.substr(124, 12), std::string("00000000156\0", 12));
  EXPECT_EQ(archive.substr(512, 111), "110 path=" + name + "\n" + std::string(1, '\0'));
  EXPECT_EQ(archive.substr(1024, 100), name.substr(0, 99) + std::string(1, '\0'));
  EXPECT_EQ(archive[1024 + 156], '0');
}

TEST(TarTest, TheLengthOfARecordCountsItsOwnDigits) {
  Tar tar(0);
  tar.Add("short", "");
  tar.Add(std::string(984, 'n'), "");
  const std::string archive = tar.Finish();
  EXPECT_EQ(archive[156], '0');
  // 991 bytes and three digits are 994.
  EXPECT_EQ(archive.substr(1024, 9), "994 path=");
}

TEST(TarTest, TwoFilesOfOneNameAreTwoMembers) {
  Tar tar(0);
  for (const char* bytes : {"one", "two", "three"}) tar.Add("crash/A.LOG", bytes);
  const std::string archive = tar.Finish();
  EXPECT_EQ(archive.substr(0, 12), std::string("crash/A.LOG\0", 12));
  EXPECT_EQ(archive.substr(1024, 14), std::string("crash/A-2.LOG\0", 14));
  EXPECT_EQ(archive.substr(2048, 14), std::string("crash/A-3.LOG\0", 14));
}

TEST(TarTest, EveryFieldOfAHeaderStandsInItsPlace) {
  Tar tar(1'000'000'000);
  tar.Add("a", std::string(513, 'x'));
  const std::string archive = tar.Finish();
  EXPECT_EQ(archive.substr(108, 16), std::string("0000000\0"
                                                 "0000000\0",
                                                 16))
      << "owner and group";
  EXPECT_EQ(archive.substr(124, 12), std::string("00000001001\0", 12)) << "size";
  EXPECT_EQ(archive.substr(136, 12), std::string("07346545000\0", 12)) << "time";
  EXPECT_EQ(archive.substr(265), std::string(512 - 265, '\0') + std::string(513, 'x') + std::string(511 + 1024, '\0'));
}

TEST(TarTest, ATimeBefore1970Is1970) {
  Tar tar(-1);
  tar.Add("a", "");
  EXPECT_EQ(tar.Finish().substr(136, 12), std::string("00000000000\0", 12));
}

TEST(TarTest, ANameOf99BytesNeedsNoPaxHeader) {
  Tar tar(0);
  tar.Add(std::string(99, 'n'), "");
  EXPECT_EQ(tar.Finish().size(), 3 * 512U);
}

}  // namespace
}  // namespace apps
