#include "src/ui/linux/KelvaHelper/opener/ScopeName.h"

#include <gtest/gtest.h>

namespace opener {
namespace {

TEST(ScopeName, NamesLauncherApplicationAndProcess) {
  EXPECT_EQ(ScopeName("com.kelva.Desktop", 4711), "app-kelva-com.kelva.Desktop-4711.scope");
}

TEST(ScopeName, EscapesTheDashThatSeparatesTheParts) {
  EXPECT_EQ(ScopeName("org.some-app", 1), "app-kelva-org.some\\x2dapp-1.scope");
}

TEST(ScopeName, EscapesEverythingElseThatAUnitNameMayNotHold) {
  EXPECT_EQ(ScopeName("a/b \xc3\xa9", 1), "app-kelva-a\\x2fb\\x20\\xc3\\xa9-1.scope");
}

}  // namespace
}  // namespace opener
