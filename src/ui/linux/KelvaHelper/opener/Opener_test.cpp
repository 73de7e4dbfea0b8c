#include "src/ui/linux/KelvaHelper/opener/Opener.h"

#include <gtest/gtest.h>

#include "src/ui/linux/KelvaHelper/opener/testing/ScratchDesktop.h"

namespace opener {
namespace {

struct Outcome {
  int code;
  std::string output;
  std::string errors;
};

Outcome OpenWith(const std::vector<std::string>& arguments) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const int code = Open(arguments);
  return {code, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

class OpenerTest : public testing::Test {
 protected:
  OpenerTest() { ::unsetenv("KELVA_ON_PLUG"); }

  const ScratchDesktop& desktop_ = ScratchDesktop::Get();
};

TEST_F(OpenerTest, StartsTheApplicationAndSaysSo) {
  const Outcome outcome = OpenWith({"org.example.Found"});
  ASSERT_EQ(outcome.code, 0);
  EXPECT_EQ(desktop_.WordOfTheApplication(), "word");
  EXPECT_EQ(outcome.output, "kelva-open: Started Stand-in (org.example.Found) for the camera that was attached.\n");
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(OpenerTest, ApplicationThatIsNotInstalledIsOneLineAndCodeThree) {
  const Outcome outcome = OpenWith({"org.example.Missing"});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(
      outcome.errors,
      "kelva-open: A camera was attached, but the application org.example.Missing is not installed: no folder of "
      "desktop entries has a usable org.example.Missing.desktop. Install it to have it started, or kelva-mount to see "
      "the pictures in a folder.\n");
}

TEST_F(OpenerTest, SettingLeavesTheCameraAlone) {
  ::setenv("KELVA_ON_PLUG", "desktop-only", 1);
  const Outcome outcome = OpenWith({"org.example.Missing"});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_EQ(outcome.errors.find("kelva-mount"), std::string::npos) << outcome.errors;
}

TEST_F(OpenerTest, UnknownSettingIsOneLineAndLeavesTheCameraAlone) {
  ::setenv("KELVA_ON_PLUG", "off", 1);
  const Outcome outcome = OpenWith({"org.example.Missing"});
  EXPECT_EQ(outcome.code, 3);
  EXPECT_EQ(outcome.errors.rfind("kelva-open: KELVA_ON_PLUG is \"off\", and means desktop-only; set it to mount or "
                                 "desktop-only.\n",
                                 0),
            0U)
      << outcome.errors;
  EXPECT_EQ(outcome.errors.find("kelva-mount"), std::string::npos) << outcome.errors;
}

TEST_F(OpenerTest, ApplicationThatCannotStartIsOneLineAndCodeOne) {
  const Outcome outcome = OpenWith({"org.example.Refused"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(outcome.errors.rfind("kelva-open: org.example.Refused could not be started: ", 0), 0U) << outcome.errors;
  EXPECT_EQ(outcome.errors.find('\n'), outcome.errors.size() - 1);
}

TEST_F(OpenerTest, OtherThanOneArgumentIsWrongUse) {
  for (const auto& arguments : {std::vector<std::string>{}, {""}, {"one", "two"}}) {
    const Outcome outcome = OpenWith(arguments);
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.errors,
              "kelva-open: This program takes one argument, the desktop id of the application to start.\n");
  }
}

TEST_F(OpenerTest, VersionIsOneLineAndCodeZero) {
  const Outcome outcome = OpenWith({"--version"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.output.rfind("kelva-open ", 0), 0U) << outcome.output;
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(OpenerTest, OptionThatIsNotKnownIsNoApplication) {
  const Outcome outcome = OpenWith({"--frobnicate"});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.errors, "kelva-open: \"--frobnicate\" is no desktop id; --help says how this program is used.\n");
}

TEST_F(OpenerTest, HelpNamesEveryExitCode) {
  const Outcome outcome = OpenWith({"--help"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_NE(outcome.output.find(
                "0 started; 1 it could not be started, or a camera not mounted; 2 wrong arguments; 3 not installed"),
            std::string::npos);
}

}  // namespace
}  // namespace opener
