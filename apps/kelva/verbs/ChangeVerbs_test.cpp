#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using ChangeVerbsTest = VerbTest;

TEST_F(ChangeVerbsTest, AFileIsSentCheckedAndDeleted) {
  const std::string file = (folder / "note.txt").string();
  Put("../note.txt", "hello");
  EXPECT_EQ(Run({"put", file.c_str(), "I:/N.TXT"}).code, ExitCode::kDone);
  EXPECT_EQ(Text(storage / "N.TXT"), "hello");
  EXPECT_EQ(Run({"put", file.c_str(), "I:/N.TXT"}).code, ExitCode::kFailed);
  EXPECT_EQ(Run({"put", file.c_str(), "I:/N.TXT", "--force"}).code, ExitCode::kDone);
  EXPECT_EQ(Run({"rm", "I:/N.TXT"}).code, ExitCode::kDone);
  EXPECT_FALSE(Has("N.TXT"));
  EXPECT_EQ(Run({"rm", "I:/N.TXT"}).code, ExitCode::kFailed);
}

}  // namespace
}  // namespace apps
