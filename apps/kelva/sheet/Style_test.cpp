#include "apps/kelva/sheet/Style.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace apps {
namespace {

TEST(StyleTest, TheStyleStaysInsideItsElementAndFetchesNothing) {
  for (const char* part : {"<", "url(", "@import", "http"}) {
    EXPECT_EQ(kStyle.find(part), std::string_view::npos) << part;
  }
}

TEST(StyleTest, EveryBlockIsClosed) {
  EXPECT_EQ(std::count(kStyle.begin(), kStyle.end(), '{'), std::count(kStyle.begin(), kStyle.end(), '}'));
}

TEST(StyleTest, LightDarkAndPaperAreProvidedFor) {
  for (const char* part : {"prefers-color-scheme: dark", "@media print", "prefers-reduced-motion"}) {
    EXPECT_NE(kStyle.find(part), std::string_view::npos) << part;
  }
}

}  // namespace
}  // namespace apps
