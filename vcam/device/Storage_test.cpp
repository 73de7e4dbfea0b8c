#include "vcam/device/Storage.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <cerrno>

#include "base/SendAll.h"
#include "vcam/camera/testing/TestSupport.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

using test::ScratchStorage;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A storage that keeps what hosts change in a view, over a folder with one picture.
class ViewTest : public ::testing::Test {
 protected:
  ViewTest() { scratch_.Put("DCIM/100ABCDE/a.jpg", "12345"); }

  static std::string ContentOf(const OpenedFile& opened) {
    std::string content(64, '\0');
    const ssize_t count = opened.file ? ::pread(opened.file.Get(), content.data(), content.size(), 0) : 0;
    return content.substr(0, static_cast<std::size_t>(count));
  }
  std::string Read(const std::string& path) const { return ContentOf(storage_.OpenForReading(path)); }
  std::vector<std::string> Names(const std::string& path) const {
    std::vector<std::string> names;
    for (const StorageEntry& entry : storage_.List(path)) names.push_back(entry.name);
    return names;
  }
  int Write(const std::string& path, std::string_view content) const {
    const OpenedFile opened = storage_.OpenForWriting(path);
    return opened.file ? base::WriteAll(opened.file.Get(), content) : opened.error;
  }
  /// Every path of the folder, to see that nothing came or went.
  std::vector<std::string> FolderPaths() const {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(scratch_.Path())) {
      paths.push_back(entry.path().lexically_relative(scratch_.Path()).string());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
  }
  void ExpectFolderUnchanged() const {
    EXPECT_THAT(FolderPaths(), ElementsAre("DCIM", "DCIM/100ABCDE", "DCIM/100ABCDE/a.jpg"));
    EXPECT_EQ(scratch_.Get("DCIM/100ABCDE/a.jpg"), "12345");
  }

  const ScratchStorage scratch_{};
  const Storage storage_{scratch_.Path(), Keep::kInView};
};

TEST_F(ViewTest, ShowsTheFolder) {
  EXPECT_EQ(Read("DCIM/100ABCDE/a.jpg"), "12345");
  EXPECT_THAT(Names("DCIM"), ElementsAre("100ABCDE"));
  EXPECT_TRUE(storage_.HasDirectory("DCIM"));
  EXPECT_FALSE(storage_.HasDirectory("MISC"));
  EXPECT_EQ(storage_.OpenForReading("missing").error, ENOENT);
}

TEST_F(ViewTest, ShowsWhatWasWrittenAndLeavesTheFolderAlone) {
  EXPECT_EQ(Write("DCIM/100ABCDE/b.jpg", "new"), 0);
  EXPECT_EQ(Write("DCIM/100ABCDE/a.jpg", "over"), 0);
  EXPECT_EQ(storage_.Replace("DCIM/100ABCDE/c.jpg", "third", 0644), 0);
  EXPECT_EQ(Read("DCIM/100ABCDE/a.jpg"), "over");
  EXPECT_EQ(Read("DCIM/100ABCDE/b.jpg"), "new");
  EXPECT_THAT(Names("DCIM/100ABCDE"), ElementsAre("a.jpg", "b.jpg", "c.jpg"));
  ExpectFolderUnchanged();
}

TEST_F(ViewTest, HidesWhatWasDeletedAndLeavesTheFolderAlone) {
  EXPECT_EQ(storage_.Remove("DCIM/100ABCDE/a.jpg"), 0);
  EXPECT_EQ(storage_.Remove("DCIM/100ABCDE/a.jpg"), ENOENT);
  EXPECT_EQ(storage_.OpenForReading("DCIM/100ABCDE/a.jpg").error, ENOENT);
  EXPECT_THAT(Names("DCIM/100ABCDE"), IsEmpty());
  EXPECT_EQ(Write("DCIM/100ABCDE/a.jpg", "again"), 0);
  EXPECT_EQ(Read("DCIM/100ABCDE/a.jpg"), "again");
  EXPECT_EQ(storage_.Remove("DCIM/100ABCDE/a.jpg"), 0);
  EXPECT_EQ(storage_.OpenForReading("DCIM/100ABCDE/a.jpg").error, ENOENT);
  ExpectFolderUnchanged();
}

TEST_F(ViewTest, HidesAnOverwrittenFileThatIsDeletedAgain) {
  EXPECT_EQ(storage_.Replace("DCIM/100ABCDE/a.jpg", "over", 0644), 0);
  EXPECT_EQ(storage_.Remove("DCIM/100ABCDE/a.jpg"), 0);
  EXPECT_THAT(Names("DCIM/100ABCDE"), IsEmpty());
}

TEST_F(ViewTest, MakesDirectoriesAndLeavesTheFolderAlone) {
  EXPECT_EQ(storage_.MakeDirectory("MISC"), 0);
  EXPECT_EQ(storage_.MakeDirectory("MISC"), 0);
  EXPECT_EQ(storage_.MakeDirectory("DCIM/101ABCDE"), 0);
  EXPECT_EQ(Write("DCIM/101ABCDE/x.jpg", "x"), 0);
  EXPECT_TRUE(storage_.HasDirectory("MISC"));
  EXPECT_THAT(Names(""), ElementsAre("DCIM", "MISC"));
  EXPECT_THAT(Names("DCIM"), ElementsAre("100ABCDE", "101ABCDE"));
  ExpectFolderUnchanged();
}

TEST_F(ViewTest, MakesADirectoryWhereAFileWasDeleted) {
  EXPECT_EQ(storage_.MakeDirectory("DCIM/100ABCDE/a.jpg"), EEXIST);
  EXPECT_EQ(storage_.Remove("DCIM/100ABCDE/a.jpg"), 0);
  EXPECT_EQ(storage_.MakeDirectory("DCIM/100ABCDE/a.jpg"), 0);
  EXPECT_EQ(Write("DCIM/100ABCDE/a.jpg/inner", "in"), 0);
  EXPECT_EQ(Read("DCIM/100ABCDE/a.jpg/inner"), "in");
  ExpectFolderUnchanged();
}

TEST_F(ViewTest, RefusesWhatTheFolderRefuses) {
  EXPECT_EQ(Write("MISC/x", ""), ENOENT);
  EXPECT_EQ(Write("DCIM", ""), EISDIR);
  EXPECT_NE(storage_.Replace("DCIM", "", 0600), 0);
  EXPECT_NE(storage_.Remove("DCIM"), 0);
  EXPECT_EQ(storage_.MakeDirectory("MISC/deeper"), ENOENT);
  EXPECT_FALSE(storage_.OpenForWriting("../outside").file);
  std::filesystem::permissions(scratch_.Path() / "DCIM/100ABCDE/a.jpg", std::filesystem::perms::owner_read);
  EXPECT_EQ(Write("DCIM/100ABCDE/a.jpg", ""), EACCES);
  ExpectFolderUnchanged();
}

TEST_F(ViewTest, FollowsNoSymbolicLinkToWriteOrDelete) {
  const ScratchStorage outside;
  outside.Put("secret", "secret");
  std::filesystem::create_symlink(outside.Path() / "secret", scratch_.Path() / "link");
  EXPECT_FALSE(storage_.OpenForReading("link").file);
  EXPECT_FALSE(storage_.OpenForWriting("link").file);
  EXPECT_NE(storage_.Remove("link"), 0);
  EXPECT_EQ(outside.Get("secret"), "secret");
}

TEST(Storage, LeavesNoPrivateFolderBehind) {
  const ScratchStorage scratch;
  const ScratchStorage temporary;
  const std::string before = ::getenv("TMPDIR") != nullptr ? ::getenv("TMPDIR") : "";
  ::setenv("TMPDIR", temporary.Path().c_str(), 1);
  {
    const Storage storage(scratch.Path(), Keep::kInView);
    EXPECT_EQ(storage.Replace("a", "private", 0644), 0);
    struct stat status {};
    EXPECT_EQ(::stat(std::filesystem::directory_iterator(temporary.Path())->path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
  }
  EXPECT_TRUE(std::filesystem::is_empty(temporary.Path()));
  before.empty() ? ::unsetenv("TMPDIR") : ::setenv("TMPDIR", before.c_str(), 1);
}

TEST(Storage, ChangesTheFolderWhenItMay) {
  const ScratchStorage scratch;
  scratch.Put("a", "1");
  const Storage storage(scratch.Path());
  EXPECT_EQ(storage.Replace("b", "2", 0644), 0);
  EXPECT_EQ(storage.Remove("a"), 0);
  EXPECT_EQ(scratch.Get("b"), "2");
  EXPECT_FALSE(scratch.Has("a"));
}

TEST(Storage, TurnsErrorsIntoSenseData) {
  EXPECT_EQ(SenseOfErrno(ENOENT), sense::kNotFound);
  EXPECT_EQ(SenseOfErrno(EROFS), sense::kWriteProtected);
  EXPECT_EQ(SenseOfErrno(ENOSPC), sense::kStorageFull);
  EXPECT_EQ(SenseOfErrno(EINVAL), sense::kBadParameter);
  EXPECT_EQ(SenseOfErrno(EIO), sense::kReadError);
}

TEST_F(ViewTest, SaysWhyAFileCannotBeReplaced) {
  EXPECT_EQ(storage_.Replace("missing/a", "x", 0600), ENOENT);
  ASSERT_EQ(storage_.MakeDirectory("new"), 0);
  EXPECT_EQ(storage_.Replace("new", "x", 0600), EISDIR);
  EXPECT_TRUE(storage_.HasDirectory("new"));
  ExpectFolderUnchanged();
}

}  // namespace
}  // namespace vcam
