#include "apps/kelva/verbs/OwnJson.h"

#include <gtest/gtest.h>

#include "apps/commandline/Json.h"

namespace apps {
namespace {

TEST(OwnJsonTest, MembersAreFoundByTheirNames) {
  const std::string line = Json::Object().Set("files", 12).Set("total", 0).Set("what", "a \"files\": 7").Text();
  EXPECT_EQ(NumberIn(line, "files"), 12U);
  EXPECT_EQ(NumberIn(line, "total"), 0U);
  EXPECT_EQ(NumberIn(line, "what"), std::nullopt);
  EXPECT_EQ(NumberIn(line, "iles"), std::nullopt);
  EXPECT_EQ(NumberIn(line, "none"), std::nullopt);
  EXPECT_EQ(TextIn(line, "what"), "a \"files\": 7");
  EXPECT_EQ(TextIn(line, "files"), std::nullopt);
}

TEST(OwnJsonTest, ATextCannotPassForAMember) {
  const std::string line = Json::Object().Set("what", "x\",\"files\":7,\"y").Set("files", 1).Text();
  EXPECT_EQ(NumberIn(line, "files"), 1U);
}

TEST(OwnJsonTest, LinesThatAreCutOffHaveNoText) {
  EXPECT_EQ(TextIn(R"({"what":"abc)", "what"), std::nullopt);
  EXPECT_EQ(TextIn(R"({"what":"abc\)", "what"), std::nullopt);
  EXPECT_EQ(NumberIn("", "what"), std::nullopt);
}

TEST(OwnJsonTest, OneMemberMoreStandsLast) {
  EXPECT_EQ(WithText(R"({"a":1})", "serial", "K\"1"), R"({"a":1,"serial":"K\"1"})");
  EXPECT_EQ(WithText("{}", "serial", "K1"), R"({"serial":"K1"})");
  EXPECT_EQ(WithText("no object", "serial", "K1"), "no object");
}

}  // namespace
}  // namespace apps
