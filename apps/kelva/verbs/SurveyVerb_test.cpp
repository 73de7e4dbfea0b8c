#include "apps/kelva/verbs/testing/VerbTest.h"

#include <fstream>

// A whole survey is among the tests of the program (tests/cli/survey_test.py): it waits for the camera's clock to move.

namespace apps {
namespace {

using SurveyVerbTest = VerbTest;

TEST_F(SurveyVerbTest, ASurveyThatIsThereIsKept) {
  const std::filesystem::path survey = folder / "survey";
  std::filesystem::create_directory(survey);
  std::ofstream(survey / "summary.txt") << "mine";
  const Ran ran = Run({"survey", survey.c_str(), "--yes"});
  EXPECT_EQ(ran.code, ExitCode::kFailed);
  EXPECT_NE(ran.err.find("There is a survey in "), std::string::npos) << ran.err;
  EXPECT_EQ(Text(survey / "summary.txt"), "mine");
  EXPECT_FALSE(std::filesystem::exists(survey / "trace.jsonl"));
}

TEST_F(SurveyVerbTest, TheFolderIsNamed) {
  EXPECT_EQ(Run({"survey", "--yes"}).code, ExitCode::kUsage);
}

}  // namespace
}  // namespace apps
