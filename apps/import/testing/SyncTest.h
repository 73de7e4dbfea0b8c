#ifndef KELVA_APPS_IMPORT_TESTING_SYNC_TEST_H_
#define KELVA_APPS_IMPORT_TESTING_SYNC_TEST_H_

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "apps/import/Plan.h"

namespace apps {

/// A target folder with a manifest, and pictures of a catalogue.
class SyncFolderTest : public testing::Test {
 protected:
  ~SyncFolderTest() override { std::filesystem::remove_all(path_); }

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
    return MakePlan(catalogue, "K1", {1}, Pattern(Pattern::kDefault), manifest_);
  }
  std::string Text(const std::string& name) const {
    std::ifstream file(path_ + "/" + name);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::string path_ = [] {
    std::string pattern = testing::TempDir() + "sync-XXXXXX";
    return std::string(::mkdtemp(pattern.data()));
  }();
  TargetFolder folder_ = TargetFolder::Open(path_);
  Manifest manifest_{folder_, true};
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_TESTING_SYNC_TEST_H_
