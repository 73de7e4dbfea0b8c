#ifndef KELVA_APPS_IMPORT_TESTING_SYNC_TEST_H_
#define KELVA_APPS_IMPORT_TESTING_SYNC_TEST_H_

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "apps/import/CutFiles.h"
#include "apps/import/Plan.h"
#include "base/testing/ScratchFolder.h"

namespace apps {

/// A target folder with a manifest, and pictures of a catalogue.
class SyncFolderTest : public testing::Test {
 protected:
  static DcfObj Picture(int number, const std::string& key = "") {
    DcfObj picture{};
    std::memcpy(picture.directorySuffix, "ABCDE", 5);
    std::memcpy(picture.filePrefix, "IMG_", 4);
    picture.directoryNumber = 100;
    picture.fileNumber = number;
    picture.hasJpg = 1;
    std::memcpy(picture.block7, key.data(), key.size());
    return picture;
  }
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
