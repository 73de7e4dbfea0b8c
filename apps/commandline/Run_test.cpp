#include "apps/commandline/Run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "apps/commandline/Context.h"

namespace apps {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

ExitCode Echo(Context& context) {
  context.Result(Json::Object().Set("name", *context.call.Value("name")), *context.call.Value("name") + "\n");
  return ExitCode::kDone;
}

ExitCode Fail(Context&) {
  throw std::runtime_error("The bus is gone.");
}

ExitCode FindNothing(Context&) {
  throw Failure(ExitCode::kNoCamera, "There is no such camera.");
}

constexpr Option kName[] = {
    {.name = "name", .letter = 0, .value = "NAME", .help = "It.", .alias = "label", .needed = true}};
constexpr Verb kVerbs[] = {{"echo", "Say it", {}, kName, "", "", {}, Echo},
                           {"fail", "Fail", {}, {}, "", "", {}, Fail},
                           {"find", "Find nothing", {}, {}, "", "", {}, FindNothing}};
constexpr Option kOptions[] = {kJsonOption, kQuietOption, kHelpOption};
constexpr Program kOther = {"other", "1.2.3", "Another program", "", kVerbs, kOptions};

struct Ended {
  int status;
  std::string out;
  std::string err;
};

Ended RunWith(const std::vector<const char*>& arguments) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const int status = RunProgram(kOther, arguments);
  const std::string out = testing::internal::GetCapturedStdout();
  return {status, out, testing::internal::GetCapturedStderr()};
}

TEST(RunProgramTest, ItsVerbRunsAndPrintsTheResult) {
  EXPECT_EQ(RunWith({"echo", "--name", "K1"}).out, "K1\n");
  EXPECT_EQ(RunWith({"echo", "--name", "K1", "--json"}).out,
            "{\"schema\":1,\"command\":\"echo\",\"exit\":0,\"ok\":true,\"name\":\"K1\"}\n");
}

TEST(RunProgramTest, AnOldNameOfAnOptionIsAcceptedAndNotShown) {
  EXPECT_EQ(RunWith({"echo", "--label=K1"}).out, "K1\n");
  EXPECT_EQ(RunWith({"echo", "--help"}).out.find("label"), std::string::npos);
}

TEST(RunProgramTest, AnOptionThatIsNeededStandsInTheUsageAndIsAskedFor) {
  EXPECT_THAT(RunWith({"echo", "--help"}).out, HasSubstr("Usage: other echo --name NAME [OPTIONS]\n"));
  const Ended ended = RunWith({"echo"});
  EXPECT_EQ(ended.status, 2);
  EXPECT_EQ(ended.err, "other: `other echo` needs --name NAME; `other help echo` shows how it is used.\n");
}

TEST(RunProgramTest, EveryMessageCarriesTheProgramsOwnName) {
  EXPECT_EQ(RunWith({"--version"}).out, "other 1.2.3\n");
  EXPECT_THAT(RunWith({"--help"}).out, StartsWith("Another program.\n\nUsage: other COMMAND"));
  EXPECT_EQ(RunWith({"ecko"}).err, "other: There is no command \"ecko\"; did you mean `echo`?\n");
  EXPECT_EQ(RunWith({}).err, "other: No command was given; `other help` lists all.\n");
}

TEST(RunProgramTest, AFailureIsAMessageAndAnExitStatus) {
  const Ended found = RunWith({"find"});
  EXPECT_EQ(found.status, 3);
  EXPECT_EQ(found.err, "other: There is no such camera.\n");
  const Ended failed = RunWith({"fail", "--json"});
  EXPECT_EQ(failed.status, 1);
  EXPECT_EQ(failed.out,
            "{\"schema\":1,\"command\":\"fail\",\"exit\":1,\"ok\":false,\"reason\":\"failed\",\"error\":\"The bus is "
            "gone.\"}\n");
}

}  // namespace
}  // namespace apps
