#include "apps/kelva/verbs/TextKind.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

TEST(TextKindTest, PagesAreRecognisedByTheirStart) {
  for (const char* page : {"<!DOCTYPE html>", "<html lang=de>", "\xEF\xBB\xBF\r\n <HTML>", "<?xml version='1.0'?>",
                           "<head>\xE9\x01", "<!-- saved -->"}) {
    EXPECT_EQ(TextKind(page), "an HTML page") << page;
  }
}

TEST(TextKindTest, TextsAreUtf8WithoutControlCharacters) {
  EXPECT_EQ(TextKind("404 not found\r\n"), "a text");
  EXPECT_EQ(TextKind("\xC3\xA9t\xC3\xA9\tcut at its end \xC3"), "a text");
}

TEST(TextKindTest, ATextInUtf16IsOneToo) {
  constexpr std::string_view kPage("\xFF\xFE<\0h\0t\0m\0l\0>\0\x42\x30", 16);
  constexpr std::string_view kBigFirst("\xFE\xFF\0<\0!\0-\0-", 10);
  constexpr std::string_view kText("\xFF\xFE\xE9\0t\0\xE9\0\r\0\n\0", 12);
  EXPECT_EQ(TextKind(kPage), "an HTML page");
  EXPECT_EQ(TextKind(kBigFirst), "an HTML page");
  EXPECT_EQ(TextKind(kText), "a text");
}

TEST(TextKindTest, AnImageMayBeginAsUtf16Does) {
  EXPECT_EQ(TextKind("\xFF\xFE\x12\x34\x56\x78"), "");
  EXPECT_EQ(TextKind(std::string_view("\xFE\xFF\0a\0\x01", 6)), "");
  EXPECT_EQ(TextKind("\xFF\xFE"), "");
}

TEST(TextKindTest, OtherBytesAreNoText) {
  EXPECT_EQ(TextKind(""), "");
  EXPECT_EQ(TextKind(std::string_view("firm\0ware", 9)), "");
  EXPECT_EQ(TextKind("\x7F"
                     "ELF"),
            "");
  EXPECT_EQ(TextKind("\xFF\xD8\xFF\xE0 and some letters"), "");
  EXPECT_EQ(TextKind("letters, then \x1B"), "");
}

}  // namespace
}  // namespace apps
