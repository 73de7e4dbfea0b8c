#include "apps/files/SafeName.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace apps {
namespace {

TEST(SafeNameTest, HarmlessNamesStayAsTheyAre) {
  EXPECT_EQ(SafeName("IMG_0001.JPG"), "IMG_0001.JPG");
  EXPECT_EQ(SafeName("two words (1).txt"), "two words (1).txt");
  EXPECT_EQ(SafeName("caf\xC3\xA9.jpg"), "caf\xC3\xA9.jpg");
}

TEST(SafeNameTest, NothingLeadsOutOfTheFolder) {
  EXPECT_EQ(SafeName(".."), "%2E.");
  EXPECT_EQ(SafeName("."), "%2E");
  EXPECT_EQ(SafeName("../../etc/passwd"), "%2E.%2F..%2Fetc%2Fpasswd");
  EXPECT_EQ(SafeName("..\\x"), "%2E.%5Cx");
  EXPECT_EQ(SafeName("/etc/passwd"), "%2Fetc%2Fpasswd");
  EXPECT_EQ(SafeName(""), "%");
}

TEST(SafeNameTest, NothingHidesOrCommandsATerminal) {
  EXPECT_EQ(SafeName(".bashrc"), "%2Ebashrc");
  EXPECT_EQ(SafeName("a\nb\x1b[0m"), "a%0Ab%1B[0m");
  EXPECT_EQ(SafeName(std::string_view("a\0b", 3)), "a%00b");
  EXPECT_EQ(SafeName("\xFFx"), "%FFx");
  EXPECT_EQ(SafeName("\xE2\x80\xAEgpj"), "%E2%80%AEgpj");
}

TEST(SafeNameTest, DifferentNamesStayDifferent) {
  EXPECT_NE(SafeName("a%2Fb"), SafeName("a/b"));
  EXPECT_EQ(SafeName("a%2Fb"), "a%252Fb");
  EXPECT_NE(SafeName("%"), SafeName(""));
}

TEST(SafeNameTest, LongNamesAreShortenedAndStayApart) {
  const std::string longName(1000, 'n');
  std::set<std::string> names;
  for (int i = 0; i < 100; ++i) {
    const std::string name = SafeName(longName + std::to_string(i) + ".JPG");
    EXPECT_LE(name.size(), 200U);
    EXPECT_TRUE(name.ends_with(".JPG"));
    names.insert(name);
  }
  EXPECT_EQ(names.size(), 100U);
}

TEST(SafeNameTest, ShorteningTearsNoEscapeAndNoCharacter) {
  for (std::size_t lead = 0; lead < 8; ++lead) {
    std::string name(lead, 'x');
    for (int i = 0; i < 100; ++i) name += "\xC3\xA9";
    EXPECT_EQ(SafeName(name).find("\xC3%"), std::string::npos) << lead;
    std::string escapes(lead, 'x');
    escapes += std::string(100, '\n');
    const std::string shortened = SafeName(escapes);
    EXPECT_EQ((shortened.find("%~") - lead) % 3, 0U) << shortened;
  }
}

TEST(SafeNameTest, NamesOfMoreThan200BytesEndInTheirCheckSum) {
  EXPECT_EQ(SafeName(std::string(200, 'n')), std::string(200, 'n'));
  // FNV-1a with 64 bits of 201 times 'n'.
  EXPECT_EQ(SafeName(std::string(201, 'n')), std::string(182, 'n') + "%~bb093304263dfe91");
}

TEST(SafeNameTest, AShortenedNameKeepsAnExtensionOfUpTo15Letters) {
  const std::string longName(300, 'n');
  EXPECT_TRUE(SafeName(longName + "." + std::string(15, 'e')).ends_with("." + std::string(15, 'e')));
  EXPECT_FALSE(SafeName(longName + "." + std::string(16, 'e')).ends_with("e"));
}

}  // namespace
}  // namespace apps
