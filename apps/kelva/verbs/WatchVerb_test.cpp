#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using WatchVerbTest = VerbTest;

TEST_F(WatchVerbTest, CamerasThatAreThereAreReportedFirst) {
  EXPECT_EQ(Run({"watch", "--count", "1"}).out, "present    K1  Camera\n");
  EXPECT_EQ(Run({"watch", "--count", "1", "--json"}).out,
            "{\"schema\":1,\"event\":\"attached\",\"serial\":\"K1\",\"product\":\"Camera\",\"revision\":\"1.00\","
            "\"present\":true}\n"
            "{\"schema\":1,\"command\":\"watch\",\"exit\":0,\"ok\":true,\"events\":1}\n");
}

TEST_F(WatchVerbTest, OnTakesEventsAndNeedsACommand) {
  EXPECT_EQ(Run({"watch", "--count", "1", "--on", "attached,lost", "--exec", "true"}).code, ExitCode::kDone);
  EXPECT_EQ(Run({"watch", "--count", "1", "--on", "lost"}).code, ExitCode::kUsage);
  for (const char* list : {"", "plugged", "attached,", "attached lost", "picture"}) {
    EXPECT_EQ(Run({"watch", "--count", "1", "--on", list, "--exec", "true"}).code, ExitCode::kUsage) << list;
  }
}

}  // namespace
}  // namespace apps
