#include "apps/files/NewFile.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "apps/commandline/Failure.h"
#include "base/testing/NoFreeDescriptor.h"
#include "base/testing/ScratchFolder.h"

namespace apps {
namespace {

namespace fs = std::filesystem;

class LeftoversTest : public testing::Test {
 protected:
  void Put(const std::string& name, const std::string& text) const { std::ofstream(path_ / name) << text; }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(path_)) names.push_back(entry.path().filename());
    return names;
  }

  const base::ScratchFolder scratch_;
  const fs::path path_ = scratch_.Path();
  std::optional<TargetFolder> folder_ = TargetFolder::Open(path_);
};

TEST_F(LeftoversTest, LeftoversOfAKilledRunGoAndFilesInUseStay) {
  Put(".kelva-0011223344556677.part", "half");
  Put(".kelva-other", "mine");
  const NewFile inUse(*folder_);
  EXPECT_EQ(RemoveLeftovers(*folder_), 1);
  EXPECT_FALSE(fs::exists(path_ / ".kelva-0011223344556677.part"));
  EXPECT_EQ(Names().size(), 2U);
}

TEST_F(LeftoversTest, ASweepBesideNewbornFilesTakesNoneOfThem) {
  std::atomic<bool> done = false;
  std::thread sweeper([&] {
    while (!done) RemoveLeftovers(*folder_);
  });
  int lost = 0;
  for (int i = 0; i < 500; ++i) {
    NewFile file(*folder_);
    try {
      if (!file.TakeName(std::to_string(i))) ++lost;
    } catch (const Failure&) {
      ++lost;
    }
  }
  done = true;
  sweeper.join();
  EXPECT_EQ(lost, 0);
  EXPECT_EQ(Names().size(), 500U);
}

TEST_F(LeftoversTest, APipeOfTheNameIsNotWaitedFor) {
  ASSERT_EQ(::mkfifo((path_ / ".kelva-0011223344556677.part").c_str(), 0600), 0);
  EXPECT_EQ(RemoveLeftovers(*folder_), 1);
}

TEST_F(LeftoversTest, AFolderThatCannotBeReadIsLeftAsItIs) {
  Put(".kelva-0011223344556677.part", "half");
  const base::test::NoFreeDescriptor full;
  EXPECT_EQ(RemoveLeftovers(*folder_), 0);
}

}  // namespace
}  // namespace apps
