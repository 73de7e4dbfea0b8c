#include "apps/commandline/ManPage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace apps {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr Argument kArguments[] = {{"PATH", "A file."}};
constexpr Option kOptions[] = {{"output", 'o', "FILE", "Where to."}};
constexpr Example kExamples[] = {{"PROGRAM wifi name X", "Name it X."}};
constexpr Verb kName = {"wifi name", "Name it",       kArguments,
                        kOptions,    "One.\n\n.Two.", "ssid: the name,\n  all of it\nlength: of it",
                        kExamples,   nullptr};
constexpr Variable kEnvironment[] = {{"KELVA_SERIAL", "The camera."}};
constexpr Program kTool = {"to-ol", "1.2.3", "What it does", "", std::span(&kName, 1), {}, kExitCodes, kEnvironment};

TEST(ManPageTest, APageHasAllThatTheTableSays) {
  const std::string page = ManPageOfVerb(kTool, kName);
  EXPECT_THAT(page, StartsWith(".TH TO\\-OL\\-WIFI\\-NAME 1 \"\" \"to\\-ol 1.2.3\" \"Kelva manual\"\n.SH NAME\n"));
  EXPECT_THAT(page, HasSubstr("to\\-ol\\-wifi\\-name \\- Name it\n"));
  EXPECT_THAT(page, HasSubstr(".B to\\-ol wifi name [OPTIONS] PATH\n"));
  EXPECT_THAT(page, HasSubstr("One.\n.PP\n\\&.Two.\n"));
  EXPECT_THAT(page, HasSubstr(".TP\n.B \\-o, \\-\\-output FILE\nWhere to.\n"));
  EXPECT_THAT(page, HasSubstr(".SH JSON RESULT\n.TP\n.B ssid\nthe name,\nall of it\n.TP\n.B length\nof it\n"));
  EXPECT_THAT(page, HasSubstr(".TP\n.B to\\-ol wifi name X\nName it X.\n"));
}

TEST(ManPageTest, TheToolsPageNamesEveryCommandAndExitStatus) {
  const std::string page = ManPageOf(kTool);
  EXPECT_THAT(page, HasSubstr(".BR to\\-ol\\-wifi\\-name (1)\nName it\n"));
  EXPECT_THAT(page, HasSubstr(".B 130 (interrupted)\n"));
  EXPECT_THAT(page, HasSubstr(".B 4 (busy)\n"));
  EXPECT_THAT(page, HasSubstr(".B KELVA_SERIAL\n"));
}

TEST(TroffTest, NothingIsARequestOrAnEscape) {
  EXPECT_EQ(Troff(".TH\n'x a\\b-c"), "\\&.TH\n\\&\\(aqx a\\eb\\-c");
}

}  // namespace
}  // namespace apps
