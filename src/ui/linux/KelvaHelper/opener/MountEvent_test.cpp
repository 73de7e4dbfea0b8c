#include "src/ui/linux/KelvaHelper/opener/MountEvent.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace opener {
namespace {

using testing::Pair;
using testing::UnorderedElementsAre;

std::optional<Mounted> MountedIn(const std::string& line) {
  const auto event = ReadEvent(line);
  return event ? ReadMounted(*event) : std::nullopt;
}

TEST(MountEvent, CameraThatIsAFolderNow) {
  const auto mounted =
      MountedIn(R"({"schema":1,"event":"mounted","path":"/a/Kelva KV0001","serial":"KV0001","was_mounted":false})");
  ASSERT_TRUE(mounted);
  EXPECT_EQ(mounted->path, "/a/Kelva KV0001");
  EXPECT_EQ(mounted->serial, "KV0001");
  EXPECT_FALSE(mounted->before);
}

TEST(MountEvent, CameraThatWasAFolderBefore) {
  const auto mounted = MountedIn(R"({"event": "mounted", "path": "/a", "serial": "K", "was_mounted": true})");
  ASSERT_TRUE(mounted);
  EXPECT_TRUE(mounted->before);
}

TEST(MountEvent, OtherEventsAreNoCamera) {
  EXPECT_FALSE(MountedIn(R"({"event":"unmounted","path":"/a","serial":"K"})"));
}

TEST(MountEvent, PathThatStartsSomewhereElseIsNoCamera) {
  EXPECT_FALSE(MountedIn(R"({"event":"mounted","path":"a","serial":"K"})"));
  EXPECT_FALSE(MountedIn(R"({"event":"mounted","serial":"K"})"));
}

TEST(MountEvent, EscapesOfAStringAreTakenAway) {
  const auto event = ReadEvent(R"({"a":"\"\\\/\b\f\n\r\t","b":"\u00e9\u202e\u0007"})");
  ASSERT_TRUE(event);
  EXPECT_THAT(*event, UnorderedElementsAre(Pair("a", "\"\\/\b\f\n\r\t"), Pair("b", "\xc3\xa9\xe2\x80\xae\a")));
}

TEST(MountEvent, PlainValuesStayAsTheyAreWritten) {
  const auto event = ReadEvent(R"( { "a" : -1.5E+3 , "b" : null, "c":true } )");
  ASSERT_TRUE(event);
  EXPECT_THAT(*event, UnorderedElementsAre(Pair("a", "-1.5E+3"), Pair("b", "null"), Pair("c", "true")));
}

TEST(MountEvent, ObjectWithoutMembersHasNone) {
  const auto event = ReadEvent("{}");
  ASSERT_TRUE(event);
  EXPECT_TRUE(event->empty());
}

TEST(MountEvent, LineThatIsNoObjectOfPlainValuesIsNothing) {
  for (const char* line : {"",
                           "kelva-mount: No camera.",
                           "{",
                           "{\"a\"",
                           "{\"a\":",
                           "{\"a\":}",
                           "{\"a\":1",
                           "{\"a\":1,}",
                           "{\"a\":1}x",
                           "{\"a\":[1]}",
                           "{\"a\":{}}",
                           "{\"a\":\"",
                           "{\"a\":\"\\",
                           "{\"a\":\"\\x\"}",
                           "{\"a\":\"\\u12\"}",
                           "{\"a\":\"\\u12x4\"}",
                           "{\"a\":\"\\ud800\"}",
                           "{\"a\":\"\\u0000\"}",
                           "[1]",
                           "{1:2}",
                           "{\"a\" 1}"}) {
    EXPECT_FALSE(ReadEvent(line)) << line;
  }
}

}  // namespace
}  // namespace opener
