#ifndef KELVA_APPS_IMPORT_TESTING_SYNC_TEST_H_
#define KELVA_APPS_IMPORT_TESTING_SYNC_TEST_H_

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "apps/camera/testing/MadePicture.h"
#include "apps/import/CutFiles.h"
#include "apps/import/Plan.h"
#include "base/testing/ScratchFolder.h"

namespace apps {

/// A target folder with a manifest, and pictures of a catalogue.
class SyncFolderTest : public testing::Test {
 protected:
  static DcfObj Picture(int number, const std::string& key = "") { return MadePicture(number, 100, key); }
  SyncPlan Plan(const std::vector<DcfObj>& catalogue) {
    return MakePlan(catalogue, "K1", {1}, Pattern(Pattern::kDefault), manifest_, &folder_);
  }
  std::string Text(const std::string& name) const {
    std::ifstream file(path_ + "/" + name);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  const base::ScratchFolder scratch_;
  const std::string path_ = scratch_.Path();
  TargetFolder folder_ = TargetFolder::Open(path_);
  Manifest manifest_{folder_, true};
  CutFiles cuts_{folder_, manifest_};
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_TESTING_SYNC_TEST_H_
