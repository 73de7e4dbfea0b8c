#include "apps/commandline/Scratch.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "base/FileDescriptor.h"
#include "base/testing/ScratchFolder.h"

namespace apps {
namespace {

class ScratchTest : public testing::Test {
 protected:
  void Make(const std::string& name) const { std::ofstream(path_ / name) << "x"; }
  bool Exists(const std::string& name) const { return std::filesystem::exists(path_ / name); }

  const base::ScratchFolder scratch_;
  const std::filesystem::path path_ = scratch_.Path();
  const base::FileDescriptor folder_{::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
};

TEST_F(ScratchTest, FilesThatAreRememberedAreRemoved) {
  Make("one");
  Make("two");
  const ScratchRecord one(folder_.Get(), "one");
  RemoveScratchFiles();
  EXPECT_FALSE(Exists("one"));
  EXPECT_TRUE(Exists("two"));
}

TEST_F(ScratchTest, FilesThatWereForgottenStay) {
  Make("one");
  Make("two");
  ScratchRecord one(folder_.Get(), "one");
  one.Forget();
  { const ScratchRecord two(folder_.Get(), "two"); }
  RemoveScratchFiles();
  EXPECT_TRUE(Exists("one"));
  EXPECT_TRUE(Exists("two"));
}

TEST_F(ScratchTest, TooManyAtOnceAreRefusedAndRoomComesBack) {
  std::vector<std::unique_ptr<ScratchRecord>> records;
  EXPECT_THROW(
      {
        for (int i = 0; i < 1000; ++i) records.push_back(std::make_unique<ScratchRecord>(folder_.Get(), "x"));
      },
      std::length_error);
  records.clear();
  EXPECT_NO_THROW(ScratchRecord(folder_.Get(), "x"));
}

TEST_F(ScratchTest, ANameThatDoesNotFitIsRefused) {
  EXPECT_THROW(ScratchRecord(folder_.Get(), std::string(256, 'n')), std::length_error);
}

}  // namespace
}  // namespace apps
