#include "verbs/VerbTest.h"

namespace kelva {
namespace {

using InfoVerbTest = VerbTest;

TEST_F(InfoVerbTest, TheInformationsTextsHaveTheirNames) {
  EXPECT_NE(Run({"info"}).out.find("serial    K1\nvendor    Kelva\n"), std::string::npos);
}

}  // namespace
}  // namespace kelva
