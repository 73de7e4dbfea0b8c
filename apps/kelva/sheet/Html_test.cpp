#include "apps/kelva/sheet/Html.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

TEST(HtmlTest, NothingInATextCanBecomeMarkup) {
  EXPECT_EQ(Html("<script>alert('x')</script>"), "&lt;script&gt;alert(&#39;x&#39;)&lt;/script&gt;");
  EXPECT_EQ(Html("\" onload=\"x"), "&quot; onload=&quot;x");
  EXPECT_EQ(Html("&lt;"), "&amp;lt;");
  EXPECT_EQ(Html("IMG_0001 Ä"), "IMG_0001 Ä");
}

TEST(HtmlTest, ControlBytesAndBytesThatAreNoTextAreShown) {
  EXPECT_EQ(Html(std::string_view("a\0b\x1B\n", 5)), "a\\x00b\\x1b\\x0a");
  EXPECT_EQ(Html("\xC3("), "\\xc3(");
  EXPECT_EQ(Html("\xE2\x80\xAE"
                 "GPJ"),
            "\\u{202e}GPJ");
}

TEST(HtmlTest, AnAddressStaysBesideTheDocument) {
  EXPECT_EQ(RelativeAddress("100ABCDE/IMG_0001.JPG"), "./100ABCDE/IMG_0001.JPG");
  EXPECT_EQ(RelativeAddress("javascript:x?a#b"), "./javascript%3Ax%3Fa%23b");
  EXPECT_EQ(RelativeAddress("a%41 \"<\xC3\xA4"), "./a%2541%20%22%3C%C3%A4");
}

TEST(HtmlTest, ImagesStandInTheDocument) {
  EXPECT_EQ(ImageAddress(""), "data:image/jpeg;base64,");
  EXPECT_EQ(ImageAddress("M"), "data:image/jpeg;base64,TQ==");
  EXPECT_EQ(ImageAddress("Ma"), "data:image/jpeg;base64,TWE=");
  EXPECT_EQ(ImageAddress("Man"), "data:image/jpeg;base64,TWFu");
  EXPECT_EQ(ImageAddress("\xFF\xD8\xFF\xE0"), "data:image/jpeg;base64,/9j/4A==");
}

}  // namespace
}  // namespace apps
