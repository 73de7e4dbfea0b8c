#include "apps/kelva/verbs/Each.h"

#include "apps/commandline/Failure.h"
#include "apps/commandline/testing/SilentContext.h"
#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using EachTest = VerbTest;

TEST_F(EachTest, AllFailedIsTheFirstFailure) {
  EXPECT_EQ(Run({"rm", "I:/A", "I:/B"}).code, ExitCode::kFailed);
}

TEST_F(EachTest, SomeFailedIsPartialAndTheResultNamesEach) {
  Put("A", "x");
  const Ran ran = Run({"rm", "I:/A", "I:/B", "--json"});
  EXPECT_EQ(ran.code, ExitCode::kPartial);
  EXPECT_NE(ran.out.find("\"files\":[{\"path\":\"I:\\\\A\"},{\"path\":\"I:\\\\B\",\"reason\":\"failed\","),
            std::string::npos)
      << ran.out;
  EXPECT_NE(ran.out.find("\"failed\":1,\"reason\":\"partial\"}"), std::string::npos) << ran.out;
  EXPECT_FALSE(Has("A"));
}

class EachCheckTest : public testing::Test, protected SilentContext {};

TEST_F(EachCheckTest, AFileOfWhichTheCheckFailsIsAFailure) {
  Each each(context_, "files", Json::Object());
  for (const std::string path : {"A", "B"}) {
    each.TryUnchecked(path, [&] { return Json::Object().SetBytes("path", path); });
  }
  each.TryUnchecked("C", []() -> Json { throw Failure(ExitCode::kFailed, "No C."); });
  std::string checked;
  each.Check([&](const std::string& path) {
    checked += path;
    if (path == "A") throw Failure(ExitCode::kRefused, "A stays.");
  });
  EXPECT_EQ(checked, "AB");
  EXPECT_EQ(each.Done(), 1);
  EXPECT_EQ(each.Failed(), 2);
  EXPECT_EQ(Said(), "kelva: No C.\nkelva: A stays.\n");
  EXPECT_EQ(each.Finish(Json::Object()), ExitCode::kPartial);
}

}  // namespace
}  // namespace apps
