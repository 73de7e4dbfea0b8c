#include "apps/files/NewFile.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "apps/commandline/Failure.h"
#include "base/testing/ScratchFolder.h"

namespace apps {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

class NewFileTest : public testing::Test {
 protected:
  void Put(const std::string& name, const std::string& text) const { std::ofstream(path_ / name) << text; }
  std::string Text(const std::string& name) const {
    std::ifstream file(path_ / name);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(path_)) names.push_back(entry.path().filename());
    return names;
  }

  const base::ScratchFolder scratch_;
  const fs::path path_ = scratch_.Path();
  std::optional<TargetFolder> folder_ = TargetFolder::Open(path_);
};

TEST_F(NewFileTest, TheNameAppearsOnlyWhenItIsTaken) {
  NewFile file(*folder_);
  file.Write(std::string("whole"));
  file.Flush();
  EXPECT_THAT(Names(), ElementsAre(testing::AllOf(testing::StartsWith(".kelva-"), testing::EndsWith(".part"))));
  EXPECT_TRUE(file.TakeName("IMG_0001.JPG"));
  EXPECT_THAT(Names(), ElementsAre("IMG_0001.JPG"));
  EXPECT_EQ(Text("IMG_0001.JPG"), "whole");
}

TEST_F(NewFileTest, AFileThatIsNotFinishedLeavesNothing) {
  { NewFile(*folder_).Write(std::string("half")); }
  EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(NewFileTest, AnExistingFileIsNotReplaced) {
  Put("A", "mine");
  {
    NewFile file(*folder_);
    file.Write(std::string("theirs"));
    EXPECT_FALSE(file.TakeName("A"));
    EXPECT_EQ(Text("A"), "mine");
    EXPECT_TRUE(file.TakeName("A-2"));
  }
  EXPECT_EQ(Text("A-2"), "theirs");
}

TEST_F(NewFileTest, AnExistingLinkIsNeitherFollowedNorReplaced) {
  fs::create_symlink("/nowhere", path_ / "A");
  NewFile file(*folder_);
  EXPECT_FALSE(file.TakeName("A"));
  EXPECT_EQ(fs::read_symlink(path_ / "A"), "/nowhere");
}

TEST_F(NewFileTest, ReplacingIsAChoice) {
  Put("A", "old");
  NewFile file(*folder_);
  file.Write(std::string("new"));
  file.ReplaceName("A");
  EXPECT_EQ(Text("A"), "new");
}

}  // namespace
}  // namespace apps
