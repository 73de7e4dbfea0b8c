#include "src/ui/linux/KelvaHelper/Arguments.h"

#include <gtest/gtest.h>

namespace helper {
namespace {

using Request = Arguments::Request;

TEST(Arguments, NoneMeansThisMachinesDevices) {
  const Arguments arguments = ParseArguments({});
  EXPECT_EQ(arguments.request, Request::kWatch);
  EXPECT_EQ(arguments.virtualBus, "");
}

TEST(Arguments, VirtualTakesThePathAsTheNextWordOrAfterAnEqualsSign) {
  EXPECT_EQ(ParseArguments({"--virtual", "/tmp/bus"}).virtualBus, "/tmp/bus");
  EXPECT_EQ(ParseArguments({"--virtual=/tmp/bus"}).virtualBus, "/tmp/bus");
  EXPECT_EQ(ParseArguments({"--virtual=/tmp/bus"}).request, Request::kWatch);
}

TEST(Arguments, TheOlderNameOfTheOptionIsTaken) {
  EXPECT_EQ(ParseArguments({"--socket", "/tmp/bus"}).virtualBus, "/tmp/bus");
  EXPECT_EQ(ParseArguments({"--socket=/tmp/bus"}).virtualBus, "/tmp/bus");
  EXPECT_EQ(ParseArguments({"--socket"}).request, Request::kWrong);
  EXPECT_EQ(ParseArguments({"--sock=/tmp/bus"}).request, Request::kWrong);
}

TEST(Arguments, VirtualWithoutAPathIsWrongAndNeverFallsBackToTheMachine) {
  for (const auto& words : {std::vector<std::string>{"--virtual"}, {"--virtual", ""}, {"--virtual="}}) {
    const Arguments arguments = ParseArguments(words);
    EXPECT_EQ(arguments.request, Request::kWrong);
    EXPECT_EQ(arguments.complaint, "--virtual needs the path of a virtual bus's socket.");
  }
}

TEST(Arguments, UnknownWordIsNamedInTheComplaint) {
  const Arguments arguments = ParseArguments({"--frobnicate"});
  EXPECT_EQ(arguments.request, Request::kWrong);
  EXPECT_EQ(arguments.complaint, "\"--frobnicate\" is not an argument of this program; --help lists them.");
}

TEST(Arguments, HelpAndVersionAreRecognised) {
  EXPECT_EQ(ParseArguments({"--help"}).request, Request::kHelp);
  EXPECT_EQ(ParseArguments({"-h"}).request, Request::kHelp);
  EXPECT_EQ(ParseArguments({"--version"}).request, Request::kVersion);
  EXPECT_EQ(ParseArguments({"--virtual", "/tmp/bus", "--help"}).request, Request::kHelp);
}

TEST(Arguments, HelpNamesEveryArgumentAndTheDesktopApplication) {
  const std::string help = HelpText();
  for (const char* word : {"--virtual PATH", "--help", "--version", KELVA_DESKTOP_ID, "Exit codes:"}) {
    EXPECT_NE(help.find(word), std::string::npos) << word;
  }
}

TEST(Arguments, VersionIsOneLine) {
  EXPECT_EQ(VersionText(), "kelva-helper " KELVA_VERSION "\n");
}

}  // namespace
}  // namespace helper
