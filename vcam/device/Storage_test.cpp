#include "vcam/device/Storage.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <cerrno>

#include "vcam/camera/testing/TestSupport.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

using test::ScratchStorage;

TEST(Storage, OpensARegularFileAndTellsItsSize) {
  const ScratchStorage scratch;
  scratch.Put("DCIM/a.jpg", "12345");
  const OpenedFile opened = Storage(scratch.Path()).OpenForReading("DCIM/a.jpg");
  EXPECT_TRUE(opened.file);
  EXPECT_EQ(opened.stamp.size, 5U);
}

TEST(Storage, DoesNotOpenWhatIsNoRegularFile) {
  const ScratchStorage scratch;
  scratch.Put("DCIM/a.jpg", "12345");
  ::mkfifo((scratch.Path() / "fifo").c_str(), 0600);
  const Storage storage(scratch.Path());
  EXPECT_EQ(storage.OpenForReading("DCIM").error, EISDIR);
  EXPECT_FALSE(storage.OpenForReading("fifo").file);
  EXPECT_EQ(storage.OpenForReading("missing").error, ENOENT);
}

TEST(Storage, FollowsNoSymbolicLink) {
  const ScratchStorage scratch;
  const ScratchStorage outside;
  outside.Put("secret", "secret");
  std::filesystem::create_symlink(outside.Path() / "secret", scratch.Path() / "link");
  std::filesystem::create_directory_symlink(outside.Path(), scratch.Path() / "folder");
  const Storage storage(scratch.Path());
  EXPECT_FALSE(storage.OpenForReading("link").file);
  EXPECT_FALSE(storage.OpenForWriting("link").file);
  EXPECT_FALSE(storage.OpenForReading("folder/secret").file);
  EXPECT_NE(storage.Remove("folder/secret"), 0);
  EXPECT_NE(storage.Remove("link"), 0);
  EXPECT_TRUE(storage.List("").empty());
  EXPECT_EQ(outside.Get("secret"), "secret");
}

TEST(Storage, StaysBelowItsFolder) {
  const ScratchStorage scratch;
  scratch.Put("inner/a", "a");
  scratch.Put("outer", "o");
  const Storage storage(scratch.Path() / "inner");
  EXPECT_FALSE(storage.OpenForReading("../outer").file);
  EXPECT_FALSE(storage.OpenForReading("/etc/passwd").file);
  EXPECT_NE(storage.Remove("../outer"), 0);
}

TEST(Storage, EmptiesAFileThatIsWrittenAgain) {
  const ScratchStorage scratch;
  scratch.Put("a", "12345");
  EXPECT_TRUE(Storage(scratch.Path()).OpenForWriting("a").file);
  EXPECT_EQ(scratch.Get("a"), "");
}

TEST(Storage, DeletesFilesButNoDirectory) {
  const ScratchStorage scratch;
  scratch.Put("DCIM/a", "1");
  const Storage storage(scratch.Path());
  EXPECT_EQ(storage.Remove("DCIM/a"), 0);
  EXPECT_EQ(storage.Remove("DCIM/a"), ENOENT);
  EXPECT_NE(storage.Remove("DCIM"), 0);
  EXPECT_TRUE(scratch.Has("DCIM"));
}

TEST(Storage, ListsByNameWithoutWhatTheCameraCannotSay) {
  const ScratchStorage scratch;
  scratch.Put("b", "22");
  scratch.Put("a/x", "1");
  scratch.Put("back\\slash", "1");
  scratch.Put(".kelva/state", "");
  const auto entries = Storage(scratch.Path()).List("");
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].name, "a");
  EXPECT_TRUE(entries[0].isDirectory);
  EXPECT_EQ(entries[1].name, "b");
  EXPECT_EQ(entries[1].stamp.size, 2U);
}

TEST(Storage, ReplacesAFileAsAWhole) {
  const ScratchStorage scratch;
  scratch.Put("a", "old and long");
  EXPECT_EQ(Storage(scratch.Path()).Replace("a", "new", 0600), 0);
  EXPECT_EQ(scratch.Get("a"), "new");
  EXPECT_FALSE(scratch.Has("a.new"));
}

TEST(Storage, TurnsErrorsIntoSenseData) {
  EXPECT_EQ(SenseOfErrno(ENOENT), sense::kNotFound);
  EXPECT_EQ(SenseOfErrno(EROFS), sense::kWriteProtected);
  EXPECT_EQ(SenseOfErrno(ENOSPC), sense::kStorageFull);
  EXPECT_EQ(SenseOfErrno(EINVAL), sense::kBadParameter);
  EXPECT_EQ(SenseOfErrno(EIO), sense::kReadError);
}

}  // namespace
}  // namespace vcam
