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
