#include "apps/kelva/sheet/Card.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace apps {
namespace {

using testing::HasSubstr;
using testing::Not;

Card Example() {
  Card card;
  card.folder = "100ABCDE";
  card.name = "IMG_0001";
  card.time = "2026-03-14 15:09:26";
  card.files = {{"JPG", 3'200'000, ""}, {"RAW", 24'000'000, ""}};
  card.thumbnail = Thumbnail{300, 200, "\xFF\xD8", std::nullopt, ""};
  return card;
}

TEST(CardTest, NameFolderTimeTypesAndSizesAreShown) {
  const std::string html = CardHtml(Example());
  EXPECT_THAT(html, HasSubstr("<h3>IMG_0001</h3>"));
  EXPECT_THAT(html, HasSubstr("<span>100ABCDE</span>"));
  EXPECT_THAT(html, HasSubstr("<time datetime=\"2026-03-14T15:09:26\" title=\"2026-03-14 15:09:26\">15:09</time>"));
  EXPECT_THAT(html, HasSubstr("<b>JPG</b> 3.2 MB"));
  EXPECT_THAT(html, HasSubstr("<b>RAW</b> 24.0 MB"));
}

TEST(CardTest, TheThumbnailStandsInThePageAndKeepsItsShape) {
  const std::string html = CardHtml(Example());
  EXPECT_THAT(html, HasSubstr("<img src=\"data:image/jpeg;base64,/9g=\" width=\"300\" height=\"200\" "
                              "alt=\"Picture 100ABCDE/IMG_0001\""));
  EXPECT_THAT(html, HasSubstr("--r:1.500"));
}

TEST(CardTest, VeryLongAndVeryHighPicturesLeaveRoomForOthers) {
  Card card = Example();
  card.thumbnail->height = 1;
  EXPECT_THAT(CardHtml(card), HasSubstr("--r:2.400"));
  card.thumbnail->width = 1;
  card.thumbnail->height = 400;
  EXPECT_THAT(CardHtml(card), HasSubstr("--r:0.620"));
}

TEST(CardTest, WhatWasNotFetchedIsNoLink) {
  EXPECT_THAT(CardHtml(Example()), Not(HasSubstr("href")));
}

TEST(CardTest, FetchedFilesAreLinksAndTheThumbnailOpensTheFirst) {
  Card card = Example();
  card.files[1].beside = "a b/IMG_0001.RAW";
  EXPECT_THAT(CardHtml(card), HasSubstr("<a class=\"frame\" href=\"./a%20b/IMG_0001.RAW\">"));
  card.files[0].beside = "IMG_0001.JPG";
  EXPECT_THAT(CardHtml(card), HasSubstr("<a class=\"frame\" href=\"./IMG_0001.JPG\">"));
  EXPECT_THAT(CardHtml(card), HasSubstr("<a class=\"file\" href=\"./a%20b/IMG_0001.RAW\""));
}

TEST(CardTest, APictureWithoutThumbnailHasAPlaceholderThatSaysWhy) {
  Card card = Example();
  card.thumbnail.reset();
  card.trouble = "cannot be drawn";
  const std::string html = CardHtml(card);
  EXPECT_THAT(html, HasSubstr("role=\"img\" aria-label=\"Picture 100ABCDE/IMG_0001: cannot be drawn\""));
  EXPECT_THAT(html, Not(HasSubstr("<img")));
}

TEST(CardTest, ADamagedPictureIsShownAndMarked) {
  Card card = Example();
  card.trouble = "damaged";
  EXPECT_THAT(CardHtml(card), HasSubstr("<span class=\"mark\">damaged</span>"));
}

TEST(CardTest, NamesOfACameraStayText) {
  Card card = Example();
  card.folder = "100'\"><x";
  card.name = "<script>0001";
  card.files[0].beside = "100'\"><x/<script>0001.JPG";
  const std::string html = CardHtml(card);
  EXPECT_THAT(html, Not(HasSubstr("<script>")));
  EXPECT_THAT(html, Not(HasSubstr("<x")));
  EXPECT_THAT(html, Not(HasSubstr("100'\"")));
}

}  // namespace
}  // namespace apps
