#include "apps/kelva/verbs/SyncAll.h"

#include <gmock/gmock.h>

#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using testing::HasSubstr;

// The processes themselves are tried with the real tool, in tests/cli/all_test.py: here each would be this test again.
class SyncAllTest : public VerbTest {};

TEST_F(SyncAllTest, OneCameraOrAll) {
  const Ran ran = Run({"sync", "--all", "-s", "K1", folder.c_str()});
  EXPECT_EQ(ran.code, ExitCode::kUsage);
  EXPECT_THAT(ran.err, HasSubstr("Use --all or --serial, not both."));
}

}  // namespace
}  // namespace apps
