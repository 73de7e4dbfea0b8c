#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using HelpVerbsTest = VerbTest;

TEST_F(HelpVerbsTest, HelpManualAndCompletionComeFromTheTable) {
  EXPECT_NE(Run({"help"}).out.find("\n  pictures rm "), std::string::npos);
  EXPECT_NE(Run({"help", "wifi", "name"}).out.find("Usage: kelva wifi name [OPTIONS] NAME"), std::string::npos);
  EXPECT_NE(Run({"manual"}).out.find(".SH EXIT STATUS"), std::string::npos);
  EXPECT_NE(Run({"completion", "fish"}).out.find("complete -c kelva"), std::string::npos);
  EXPECT_EQ(Run({"help", "frob"}).code, ExitCode::kUsage);
  EXPECT_EQ(Run({"completion", "cmd"}).code, ExitCode::kUsage);
}

TEST_F(HelpVerbsTest, AllPagesAreWrittenAtOnce) {
  const std::string into = (folder / "man").string();
  EXPECT_EQ(Run({"manual", "--into", into.c_str()}).code, ExitCode::kDone);
  EXPECT_NE(Text(folder / "man/kelva-wifi-name.1").find(".TH KELVA"), std::string::npos);
  EXPECT_NE(Text(folder / "man/kelva.1").find(".SH EXIT STATUS"), std::string::npos);
}

}  // namespace
}  // namespace apps
