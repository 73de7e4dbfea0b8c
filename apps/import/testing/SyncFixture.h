#ifndef KELVA_APPS_IMPORT_TESTING_SYNC_FIXTURE_H_
#define KELVA_APPS_IMPORT_TESTING_SYNC_FIXTURE_H_

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/commandline/testing/SilentContext.h"
#include "apps/import/Sync.h"
#include "apps/import/testing/SyncTest.h"
#include "src/wifi/CameraError.h"

namespace apps {

/// A camera with two pictures of three bytes, and syncs of its pictures.
class SyncTest : public SyncFolderTest, protected SilentContext {
 protected:
  explicit SyncTest(ReportStyle style = {}) : SilentContext(style) {
    camera_.open = true;
    camera_.folder = "I:\\DCIM\\100ABCDE";
    camera_.files = {{"IMG_0001.JPG", "one"}, {"IMG_0002.JPG", "two"}};
  }

  static constexpr SyncOptions kVerifyAndDelete = {.verify = true, .deleteAfter = true};

  static CameraTransferError Gone() {
    return CameraTransferError(
        "Transfer error\nCDB=[c4 00 01 00 00 00 00 00 00 00 00 00 00 00 00 00]\nret=0xe00002c0 "
        "result.status=0x00000000");
  }
  /// A run that is carried out to its end.
  SyncTotals Run(SyncOptions options = {}, const std::vector<DcfObj>& catalogue = {Picture(1), Picture(2)}) {
    return Run(options, catalogue, false);
  }
  /// A run that ends before.
  Outcome RunToItsEnd(SyncOptions options = {}, const std::vector<DcfObj>& catalogue = {Picture(1), Picture(2)}) {
    Run(options, catalogue, true);
    return ended_.value_or(Outcome{ExitCode::kDone, ""});
  }
  bool CameraHas(const std::string& name) const { return camera_.files.count(name) == 1; }

  FakeCamera camera_;

 private:
  SyncTotals Run(SyncOptions options, const std::vector<DcfObj>& catalogue, bool ends) {
    const SyncPlan plan = Plan(catalogue);
    camera_.catalogue = catalogue;
    // On the heap: ThreadSanitizer takes the mutexes of two tests that stood at one place of the stack for one.
    const auto sync = std::make_unique<Sync>(context_, Shared(camera_), folder_, manifest_, options);
    ended_ = sync->Run(plan);
    EXPECT_EQ(ended_.has_value(), ends);
    return sync->Totals();
  }

  std::optional<Outcome> ended_;
};

/// The same with --json.
class SyncJsonTest : public SyncTest {
 protected:
  SyncJsonTest() : SyncTest({.json = true}) {}
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_TESTING_SYNC_FIXTURE_H_
