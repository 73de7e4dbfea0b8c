#include "apps/kelva/sheet/Page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace apps {
namespace {

using testing::HasSubstr;
using testing::Not;

Card Taken(const char* time) {
  Card card;
  card.folder = "100ABCDE";
  card.name = "IMG_0001";
  if (time != nullptr) card.time = time;
  return card;
}

std::size_t Count(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST(PageTest, TheHeadSaysWhoseAndHowManyPicturesOfWhen) {
  const std::string html = Page().Start({"Camera", "K1", 12, "2026-03-14 15:09:26", "2026-05-02 08:00:00"});
  EXPECT_EQ(html.rfind("<!DOCTYPE html>\n<html lang=\"en\">", 0), 0U);
  EXPECT_THAT(html, HasSubstr("<title>Pictures of camera K1</title>"));
  EXPECT_THAT(html, HasSubstr("12 pictures"));
  EXPECT_THAT(html, HasSubstr("14 March 2026 to 2 May 2026"));
}

TEST(PageTest, OneDayIsNamedOnceAndNoDayNotAtAll) {
  EXPECT_THAT(Page().Start({"", "K1", 1, "2026-03-14 01:00:00", "2026-03-14 02:00:00"}),
              HasSubstr("1 picture\u00A0<span class=\"dot\">\u00B7</span> 14 March 2026</p>"));
  EXPECT_THAT(Page().Start({"", "K1", 2, "", ""}), HasSubstr("<p>2 pictures</p>"));
}

TEST(PageTest, ThePolicyAllowsNothingButWhatStandsInThePage) {
  const std::string html = Page().Start({"Camera", "K1", 1, "", ""});
  EXPECT_THAT(html, HasSubstr("default-src 'none'; img-src data:; style-src 'unsafe-inline'"));
  EXPECT_THAT(html, Not(HasSubstr("<script")));
  EXPECT_THAT(html, Not(HasSubstr("http://")));
  EXPECT_THAT(html, Not(HasSubstr("https://")));
  EXPECT_THAT(html, Not(HasSubstr("url(")));
}

TEST(PageTest, ASerialOfACameraStaysText) {
  EXPECT_THAT(Page().Start({"<b>", "</title><script>", 1, "", ""}), Not(HasSubstr("<script>")));
}

TEST(PageTest, EachDayHasItsOwnHeading) {
  Page page;
  std::string html;
  for (const char* time : {"2026-03-14 15:09:26", "2026-03-14 16:00:00", "2026-03-15 00:00:00"}) {
    html += page.Picture(Taken(time));
  }
  html += page.Picture(Taken(nullptr));
  html += page.End("made");
  EXPECT_EQ(Count(html, "<h2>"), 3U);
  EXPECT_EQ(Count(html, "</section>"), 3U);
  EXPECT_THAT(html, HasSubstr("<h2>Saturday, 14 March 2026</h2>"));
  EXPECT_THAT(html, HasSubstr("<h2>Undated</h2>"));
}

TEST(PageTest, ACameraWithoutPicturesHasAPageThatSaysSo) {
  Page page;
  const std::string html = page.Start({"Camera", "K1", 0, "", ""}) + page.End("made <now>");
  EXPECT_THAT(html, HasSubstr("There are no pictures"));
  EXPECT_EQ(Count(html, "section>"), 0U);
  EXPECT_THAT(html, HasSubstr("made &lt;now&gt;"));
}

}  // namespace
}  // namespace apps
