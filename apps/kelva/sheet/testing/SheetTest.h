#ifndef KELVA_APPS_KELVA_SHEET_TESTING_SHEET_TEST_H_
#define KELVA_APPS_KELVA_SHEET_TESTING_SHEET_TEST_H_

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "apps/camera/testing/MadePicture.h"
#include "apps/files/TargetFolder.h"
#include "base/testing/ScratchFolder.h"
#include "src/wifi/DcfObj.h"

namespace apps {

/// A folder for a sheet and for what is beside it.
class SheetFolderTest : public testing::Test {
 protected:
  void Put(const std::string& name, const std::string& text) const {
    std::filesystem::create_directories(std::filesystem::path(path_ + "/" + name).parent_path());
    std::ofstream(path_ + "/" + name) << text;
  }
  std::string Text(const std::string& name) const {
    std::ifstream file(path_ + "/" + name);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  const base::ScratchFolder scratch_;
  const std::string path_ = scratch_.Path();
  TargetFolder folder_ = TargetFolder::Open(path_);
};

}  // namespace apps

#endif  // KELVA_APPS_KELVA_SHEET_TESTING_SHEET_TEST_H_
