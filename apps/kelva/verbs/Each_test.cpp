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

}  // namespace
}  // namespace apps
