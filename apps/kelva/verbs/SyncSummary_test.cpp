#include "apps/kelva/verbs/SyncSummary.h"

#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using SyncSummaryTest = VerbTest;

TEST_F(SyncSummaryTest, CountsWhatWasStoredAndWhatWasKnown) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "one");
  const std::string target = (folder / "out").string();
  EXPECT_EQ(Run({"sync", target.c_str()}).out, "1 stored (3 B), 0 known before, 0 failed\n");
  EXPECT_EQ(Run({"sync", target.c_str()}).out, "0 stored (0 B), 1 known before, 0 failed\n");
}

}  // namespace
}  // namespace apps
