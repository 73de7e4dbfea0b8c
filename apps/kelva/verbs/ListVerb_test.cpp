#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using ListVerbTest = VerbTest;

TEST_F(ListVerbTest, ListShowsTheCamera) {
  const Ran ran = Run({"list"});
  EXPECT_EQ(ran.code, ExitCode::kDone);
  EXPECT_EQ(ran.out, "SERIAL  MODEL         REVISION\nK1      Kelva Camera  1.00\n");
}

TEST_F(ListVerbTest, TheDriverIsShownWhenItIsAskedFor) {
  EXPECT_EQ(Run({"list", "--verbose"}).out,
            "SERIAL  MODEL         REVISION  DRIVER\nK1      Kelva Camera  1.00      com_kelva_Glimmer\n");
}

TEST_F(ListVerbTest, ListOfAnotherSerialNumberIsAnError) {
  EXPECT_EQ(Run({"list", "-s", "K9"}).code, ExitCode::kNoCamera);
}

}  // namespace
}  // namespace apps
