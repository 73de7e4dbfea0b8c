#include "apps/files/TargetFolder.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "apps/commandline/Failure.h"
#include "apps/files/FileCalls.h"
#include "apps/files/testing/RecordingCalls.h"
#include "base/testing/ScratchFolder.h"

namespace apps {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

class TargetFolderTest : public testing::Test {
 protected:
  void Put(const std::string& name, const std::string& text) const { std::ofstream(path_ / name) << text; }
  const base::ScratchFolder scratch_;
  const fs::path path_ = scratch_.Path();
  std::optional<TargetFolder> folder_ = TargetFolder::Open(path_);
};

TEST_F(TargetFolderTest, AFolderThatIsMissingIsAFailureWithItsName) {
  try {
    TargetFolder::Open("/nowhere/at all");
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_STREQ(failure.what(), "Cannot open the folder /nowhere/at all: No such file or directory; check the name.");
  }
}

TEST_F(TargetFolderTest, AFolderBelowIsMadeOnceAndALinkInItsPlaceIsRefused) {
  EXPECT_TRUE(folder_->Below("100ABCDE").Path().ends_with("/100ABCDE"));
  EXPECT_NO_THROW(folder_->Below("100ABCDE"));
  fs::create_directory_symlink("/tmp", path_ / "101ABCDE");
  try {
    folder_->Below("101ABCDE");
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_THAT(failure.what(), HasSubstr("is a symbolic link and is not followed"));
  }
}

TEST_F(TargetFolderTest, NothingIsOpenedOutsideTheFolder) {
  Put("inside", "x");
  const base::FileDescriptor inside(OpenBeneath(folder_->Fd(), "inside", O_RDONLY));
  EXPECT_TRUE(static_cast<bool>(inside));
  EXPECT_EQ(OpenBeneath(folder_->Fd(), "../etc", O_RDONLY), -1);
  EXPECT_EQ(OpenBeneath(folder_->Fd(), "/etc/passwd", O_RDONLY), -1);
  fs::create_symlink("/etc/passwd", path_ / "link");
  EXPECT_EQ(OpenBeneath(folder_->Fd(), "link", O_RDONLY), -1);
}

TEST_F(TargetFolderTest, TheFoldersAboveATargetAreMadeAndPutOnDiskFromTheTop) {
  RecordingCalls calls(path_);
  TargetFolder::OpenOrMake(path_ / "new//deep/er/");
  EXPECT_THAT(calls.Log(), ElementsAre("make new/", "flush folder .", "make new/deep", "flush folder new",
                                       "make new/deep/er/", "flush folder new/deep"));
  EXPECT_TRUE(std::filesystem::is_directory(path_ / "new/deep/er"));
}

TEST_F(TargetFolderTest, ANewTargetsOwnNameIsPutOnDisk) {
  const RecordingCalls calls(path_);
  const TargetFolder made = TargetFolder::OpenOrMake(path_ / "out");
  const TargetFolder again = TargetFolder::OpenOrMake(path_ / "out");
  EXPECT_THAT(calls.Log(), ElementsAre("make out", "flush folder .", "make out", "flush folder ."));
}

TEST_F(TargetFolderTest, AFolderThatCannotBeFlushedIsAFailure) {
  RecordingCalls calls(path_);
  calls.FailAt(1, EIO);
  EXPECT_THROW(folder_->Sync(), Failure);
  calls.FailAt(1, EINTR);
  EXPECT_NO_THROW(folder_->Sync());
}

TEST_F(TargetFolderTest, AFileSystemThatFlushesNoFoldersIsGoodEnough) {
  RecordingCalls calls(path_);
  calls.FailAt(1, EINVAL);
  EXPECT_NO_THROW(folder_->Sync());
}

TEST_F(TargetFolderTest, NoOpenFolderReachesAnotherProgram) {
  EXPECT_EQ(::fcntl(folder_->Fd(), F_GETFD), FD_CLOEXEC);
  EXPECT_EQ(::fcntl(folder_->Below("100ABCDE").Fd(), F_GETFD), FD_CLOEXEC);
}

TEST_F(TargetFolderTest, WithoutOpenat2ALinkInPlaceOfAFolderIsNamedToo) {
  const RecordingCalls calls(path_, {.openBeneath = ENOSYS});
  fs::create_directory_symlink("/tmp", path_ / "101ABCDE");
  try {
    folder_->Below("101ABCDE");
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_THAT(failure.what(), HasSubstr("is a symbolic link and is not followed"));
  }
}

/// Why something failed.
template <typename Work>
std::string WhyNot(const Work& work) {
  try {
    work();
  } catch (const Failure& failure) {
    return failure.what();
  }
  return "";
}

TEST_F(TargetFolderTest, AFileInPlaceOfAFolderIsNamed) {
  Put("file", "x");
  const std::string path = path_ / "file";
  EXPECT_EQ(WhyNot([&] { TargetFolder::Open(path); }),
            "Cannot open the folder " + path + ": Not a directory; name a folder.");
  EXPECT_EQ(WhyNot([&] { folder_->Below("file"); }),
            "Cannot open the folder " + path + ": Not a directory; name a folder.");
}

TEST_F(TargetFolderTest, AFolderThatCannotBeMadeIsNamed) {
  RecordingCalls calls(path_);
  calls.FailAt(1, EROFS, "make");
  EXPECT_EQ(WhyNot([&] { folder_->Below("100ABCDE"); }),
            "Cannot make the folder " + (path_ / "100ABCDE").string() +
                ": Read-only file system; choose another place, or have it mounted for writing.");
  calls.FailAt(1, EINTR, "make");
  EXPECT_NO_THROW(folder_->Below("100ABCDE"));
}

/// The system's calls, which open no folder because too much is open; another program takes the folder away meanwhile.
class FullCalls : public SystemCalls {
 public:
  explicit FullCalls(fs::path folder) : folder_(std::move(folder)), before_(FileCalls::Replace(*this)) {}
  ~FullCalls() override { FileCalls::Replace(before_); }
  int Open(int, const std::string&, int) override {
    fs::remove(folder_);
    errno = EMFILE;
    return -1;
  }

 private:
  fs::path folder_;
  FileCalls& before_;
};

TEST_F(TargetFolderTest, AFolderThatIsNotOpenedIsNamedWithTheFirstError) {
  const FullCalls calls(path_ / "100ABCDE");
  EXPECT_THAT(WhyNot([&] { folder_->Below("100ABCDE"); }), HasSubstr("100ABCDE: Too many open files."));
}

TEST_F(TargetFolderTest, AFolderThatIsNotThereIsNoErrorWhereItNeedNotBe) {
  EXPECT_FALSE(TargetFolder::OpenIfThere((path_ / "none").string()).has_value());
  EXPECT_EQ(TargetFolder::OpenIfThere(path_.string())->Path(), path_.string());
  EXPECT_THROW(TargetFolder::OpenIfThere("/dev/null/x"), Failure);
}

TEST_F(TargetFolderTest, APathIsShownAsTheUserWouldTypeIt) {
  EXPECT_EQ(TargetFolder::Open(".").PathOf("a.jpg"), "a.jpg");
  EXPECT_EQ(TargetFolder::Open("/").PathOf("a.jpg"), "/a.jpg");
  EXPECT_EQ(TargetFolder::Open("/tmp").PathOf("a.jpg"), "/tmp/a.jpg");
}

}  // namespace
}  // namespace apps
