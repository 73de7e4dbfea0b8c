#include "src/ui/linux/KelvaHelper/opener/Arguments.h"

#include <gtest/gtest.h>

namespace opener {
namespace {

TEST(Arguments, DesktopIdAlone) {
  const Arguments arguments = ParseArguments({"com.kelva.Desktop"});
  EXPECT_EQ(arguments.request, Arguments::Request::kOpen);
  EXPECT_EQ(arguments.desktopId, "com.kelva.Desktop");
  EXPECT_EQ(arguments.virtualBus, "");
}

TEST(Arguments, BusOnEitherSideOfTheDesktopId) {
  for (const auto& words : {std::vector<std::string>{"a", "--virtual", "/bus"}, {"--virtual", "/bus", "a"}}) {
    const Arguments arguments = ParseArguments(words);
    EXPECT_EQ(arguments.request, Arguments::Request::kOpen);
    EXPECT_EQ(arguments.desktopId, "a");
    EXPECT_EQ(arguments.virtualBus, "/bus");
  }
}

TEST(Arguments, BusWithoutAPathIsWrong) {
  for (const auto& words : {std::vector<std::string>{"a", "--virtual"}, {"a", "--virtual", ""}}) {
    EXPECT_EQ(ParseArguments(words).complaint, "--virtual needs the path of a virtual bus's socket.");
  }
}

TEST(Arguments, HelpAndVersionNeedNothingElse) {
  EXPECT_EQ(ParseArguments({"--help"}).request, Arguments::Request::kHelp);
  EXPECT_EQ(ParseArguments({"--version"}).request, Arguments::Request::kVersion);
}

TEST(Arguments, NoneOrTwoDesktopIdsAreWrong) {
  for (const auto& words : {std::vector<std::string>{}, {""}, {"one", "two"}, {"--virtual", "/bus"}}) {
    EXPECT_EQ(ParseArguments(words).complaint,
              "This program takes one argument, the desktop id of the application to start.");
  }
}

}  // namespace
}  // namespace opener
