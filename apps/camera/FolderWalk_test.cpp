#include "apps/camera/FolderWalk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/camera/testing/TreeCamera.h"
#include "apps/commandline/testing/SilentContext.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

class FolderWalkTest : public testing::Test, protected SilentContext {
 protected:
  std::vector<std::string> Walked(FolderWalk& walk) {
    std::vector<std::string> paths;
    while (const auto listing = walk.Next()) {
      for (const CameraDirent& file : listing->files) paths.push_back(listing->folder + "\\" + file.name);
    }
    return paths;
  }
  std::vector<std::string> Walked(const std::vector<std::string>& roots) {
    FolderWalk walk(context_, camera_, roots);
    return Walked(walk);
  }

  TreeCamera camera_;
};

TEST_F(FolderWalkTest, GivesTheFilesOfAFolderAndOfAllBelow) {
  camera_.AddFolder("I:\\A", "B");
  camera_.AddFile("I:\\A", "1.TXT", "");
  camera_.AddFile("I:\\A\\B", "2.TXT", "");
  camera_.AddFile("I:\\C", "3.TXT", "");
  EXPECT_THAT(Walked({"I:\\A"}), ElementsAre("I:\\A\\1.TXT", "I:\\A\\B\\2.TXT"));
  EXPECT_THAT(Walked({"I:\\A", "I:\\C"}), UnorderedElementsAre("I:\\A\\1.TXT", "I:\\A\\B\\2.TXT", "I:\\C\\3.TXT"));
}

TEST_F(FolderWalkTest, AFolderInsideItselfHasAnEnd) {
  std::string folder = "I:";
  for (int i = 0; i < 100; ++i) {
    camera_.AddFolder(folder, "D");
    camera_.AddFile(folder, "F", "");
    folder += "\\D";
  }
  FolderWalk walk(context_, camera_, {"I:"});
  EXPECT_EQ(Walked(walk).size(), FolderWalk::kDeepest + 1);
  EXPECT_TRUE(walk.IsCut());
}

TEST_F(FolderWalkTest, FoldersWithoutNumberHaveAnEnd) {
  for (std::size_t i = 0; i <= FolderWalk::kMostFolders; ++i) camera_.AddFolder("I:", std::to_string(i));
  FolderWalk walk(context_, camera_, {"I:"});
  Walked(walk);
  EXPECT_TRUE(walk.IsCut());
}

TEST_F(FolderWalkTest, GoesOnBehindAFolderThatCannotBeListed) {
  camera_.AddFile("I:\\B", "2.TXT", "");
  camera_.unlisted = "I:\\A";
  FolderWalk walk(context_, camera_, {"I:\\A", "I:\\B"});
  EXPECT_THROW(walk.Next(), CameraError);
  EXPECT_EQ(walk.Folder(), "I:\\A");
  EXPECT_THAT(Walked(walk), ElementsAre("I:\\B\\2.TXT"));
}

}  // namespace
}  // namespace apps
