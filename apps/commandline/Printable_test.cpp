#include "apps/commandline/Printable.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

TEST(PrintableTest, PlainAndAccentedTextIsKept) {
  EXPECT_EQ(Printable("I:\\DCIM\\IMG_0001.JPG"), "I:\\DCIM\\IMG_0001.JPG");
  EXPECT_EQ(Printable("caf\xC3\xA9"), "caf\xC3\xA9");
}

TEST(PrintableTest, AWordForAShellIsInQuotesWhereItNeedsThem) {
  EXPECT_EQ(ShellWord("2026/IMG_0001-2.JPG"), "2026/IMG_0001-2.JPG");
  EXPECT_EQ(ShellWord("Z\xC3\xBCrich.JPG"), "Z\xC3\xBCrich.JPG");
  EXPECT_EQ(ShellWord("a b"), "'a b'");
  EXPECT_EQ(ShellWord("it's"), "'it'\\''s'");
  EXPECT_EQ(ShellWord("$(reboot)"), "'$(reboot)'");
  EXPECT_EQ(ShellWord("a\x1b"), "'a\\x1b'");
  EXPECT_EQ(ShellWord(""), "''");
}

TEST(PrintableTest, EscapeSequencesOfTerminalsBecomeText) {
  EXPECT_EQ(Printable("\x1b[31mred\x07"), "\\x1b[31mred\\x07");
  EXPECT_EQ(Printable("\xC2\x9B"
                      "31m"),
            "\\u{9b}31m");
}

TEST(PrintableTest, DirectionOverridesBecomeText) {
  EXPECT_EQ(Printable("gpj\xE2\x80\xAE.exe"), "gpj\\u{202e}.exe");
}

TEST(PrintableTest, BrokenUtf8IsShownByteByByte) {
  EXPECT_EQ(Printable("\xC3"), "\\xc3");
  EXPECT_EQ(Printable("\xC0\x80"), "\\xc0\\x80");
  EXPECT_EQ(Printable("\xED\xA0\x80"), "\\xed\\xa0\\x80");
  EXPECT_EQ(Printable("\xF4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");
}

TEST(PrintableTest, LineFeedsAreKeptOnlyInTextsOfSeveralLines) {
  EXPECT_EQ(Printable("a\nb\tc"), "a\\x0ab\\x09c");
  EXPECT_EQ(PrintableLines("a\nb\tc\r"), "a\nb\tc\\x0d");
}

TEST(PrintableTest, WidthCountsCharacters) {
  EXPECT_EQ(Width("caf\xC3\xA9"), 4U);
  EXPECT_EQ(Width(""), 0U);
}

TEST(PrintableTest, BytesAreGivenInTheUnitThatReadsBest) {
  EXPECT_EQ(Bytes(0), "0 B");
  EXPECT_EQ(Bytes(999), "999 B");
  EXPECT_EQ(Bytes(1000), "1.0 kB");
  EXPECT_EQ(Bytes(999'949), "999.9 kB");
  EXPECT_EQ(Bytes(999'999), "1.0 MB");
  EXPECT_EQ(Bytes(1'400'000), "1.4 MB");
  EXPECT_EQ(Bytes(18'446'744'073'709'551'615ULL), "18.4 EB");
}

TEST(WidthTest, WideCharactersTakeTwoColumnsAndCombiningOnesNone) {
  EXPECT_EQ(Width("102_TRIP/\xE6\x97\xA5\xE6\x9C\xAC_0001"), 18U);
  EXPECT_EQ(Width("Z\xC3\xBCrich"), 6U);
  EXPECT_EQ(Width("Zu\xCC\x88rich"), 6U) << "u and a combining diaeresis";
}

TEST(WidthTest, ShortenedTextNeverEndsInHalfACharacter) {
  EXPECT_EQ(Shortened("\xE6\x97\xA5\xE6\x9C\xAC", 3), "\xE6\x97\xA5");
  EXPECT_EQ(Shortened("abc", 2), "ab");
  EXPECT_EQ(Shortened("abc", 5), "abc");
}

}  // namespace
}  // namespace apps
