#include "apps/kelva/verbs/FindingText.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

using doctor::Condition;

TEST(FindingTextTest, EachFindingIsAParagraph) {
  EXPECT_EQ(TextOf({{Condition::kWell, "K1", "It is ready.", "", ""},
                    {Condition::kHeld, "K2", "It is held.", "kill 508", "Better let it finish."}}),
            "It is ready.\n"
            "It is held.\n"
            "  To mend it:  kill 508\n"
            "  Better let it finish.\n");
}

TEST(FindingTextTest, NothingThatSteersATerminalIsPrinted) {
  EXPECT_EQ(TextOf({{Condition::kHeld, "", "Held by \x1B[2J.", "", ""}}).find('\x1B'), std::string::npos);
}

}  // namespace
}  // namespace apps
