#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using InfoVerbTest = VerbTest;

TEST_F(InfoVerbTest, TheInformationsTextsHaveTheirNames) {
  EXPECT_NE(Run({"info"}).out.find("serial    K1\nvendor    Kelva\n"), std::string::npos);
}

}  // namespace
}  // namespace apps
