#include "vcam/device/StorageFolder.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "vcam/camera/testing/TestSupport.h"

// The linker puts these in the place of the C library's calls (--wrap).
namespace {

std::vector<int> openFlags;
int failedCloses = 0;

}  // namespace

extern "C" {

int __real_openat(int folder, const char* name, int flags, ...);
int __wrap_openat(int folder, const char* name, int flags, unsigned mode) {
  openFlags.push_back(flags);
  return __real_openat(folder, name, flags, mode);
}

int __real_open(const char* name, int flags, ...);
int __wrap_open(const char* name, int flags, unsigned mode) {
  openFlags.push_back(flags);
  return __real_open(name, flags, mode);
}

int __real_close(int descriptor);
int __wrap_close(int descriptor) {
  const int result = __real_close(descriptor);
  if (result != 0) ++failedCloses;
  return result;
}

}  // extern "C"

namespace vcam {
namespace {

using test::ScratchStorage;

TEST(StorageFolder, OpensARegularFileAndTellsItsSize) {
  const ScratchStorage scratch;
  scratch.Put("DCIM/a.jpg", "12345");
  const OpenedFile opened = StorageFolder(scratch.Path()).OpenForReading("DCIM/a.jpg");
  EXPECT_TRUE(opened.file);
  EXPECT_EQ(opened.stamp.size, 5U);
}

TEST(StorageFolder, DoesNotOpenWhatIsNoRegularFile) {
  const ScratchStorage scratch;
  scratch.Put("DCIM/a.jpg", "12345");
  ::mkfifo((scratch.Path() / "fifo").c_str(), 0600);
  const StorageFolder storage(scratch.Path());
  EXPECT_EQ(storage.OpenForReading("DCIM").error, EISDIR);
  EXPECT_FALSE(storage.OpenForReading("fifo").file);
  EXPECT_EQ(storage.OpenForReading("missing").error, ENOENT);
}

TEST(StorageFolder, FollowsNoSymbolicLink) {
  const ScratchStorage scratch;
  const ScratchStorage outside;
  outside.Put("secret", "secret");
  std::filesystem::create_symlink(outside.Path() / "secret", scratch.Path() / "link");
  std::filesystem::create_directory_symlink(outside.Path(), scratch.Path() / "folder");
  const StorageFolder storage(scratch.Path());
  EXPECT_FALSE(storage.OpenForReading("link").file);
  EXPECT_FALSE(storage.OpenForWriting("link").file);
  EXPECT_FALSE(storage.OpenForReading("folder/secret").file);
  EXPECT_NE(storage.Remove("folder/secret"), 0);
  EXPECT_NE(storage.Remove("link"), 0);
  EXPECT_TRUE(storage.List("").empty());
  EXPECT_EQ(outside.Get("secret"), "secret");
}

TEST(StorageFolder, FollowsNoSymbolicLinkThatStaysInside) {
  const ScratchStorage scratch;
  scratch.Put("DCIM/a", "1");
  std::filesystem::create_symlink("DCIM/a", scratch.Path() / "link");
  std::filesystem::create_directory_symlink("DCIM", scratch.Path() / "folder");
  const StorageFolder storage(scratch.Path());
  EXPECT_EQ(storage.OpenForReading("link").error, ELOOP);
  EXPECT_EQ(storage.OpenForReading("folder/a").error, ELOOP);
  EXPECT_FALSE(storage.HasDirectory("folder"));
}

TEST(StorageFolder, WritesNothingThroughALinkOfTheTemporaryName) {
  const ScratchStorage scratch;
  const ScratchStorage outside;
  outside.Put("secret", "secret");
  std::filesystem::create_symlink(outside.Path() / "secret", scratch.Path() / "a.new");
  EXPECT_EQ(StorageFolder(scratch.Path()).Replace("a", "new", 0600), ELOOP);
  EXPECT_EQ(outside.Get("secret"), "secret");
}

TEST(StorageFolder, HandsNoDescriptorToPrograms) {
  const ScratchStorage scratch;
  scratch.Put("a", "1");
  openFlags.clear();
  const StorageFolder storage(scratch.Path());
  EXPECT_EQ(::fcntl(storage.OpenForReading("a").file.Get(), F_GETFD), FD_CLOEXEC);
  storage.Replace("a", "2", 0600);
  const auto closesOnExec = testing::Truly([](int flags) { return (flags & O_CLOEXEC) != 0; });
  EXPECT_THAT(openFlags, testing::Each(closesOnExec));
  EXPECT_GE(openFlags.size(), 2U) << "the folder, and the temporary file";
}

TEST(StorageFolder, ClosesNoDescriptorTwice) {
  const ScratchStorage scratch;
  scratch.Put("a", "1");
  const StorageFolder storage(scratch.Path());
  failedCloses = 0;
  storage.List("");
  storage.Replace("b", "2", 0600);
  storage.Remove("a");
  storage.OpenForWriting("c");
  EXPECT_EQ(failedCloses, 0);
}

TEST(StorageFolder, StaysBelowItsFolder) {
  const ScratchStorage scratch;
  scratch.Put("inner/a", "a");
  scratch.Put("outer", "o");
  const StorageFolder storage(scratch.Path() / "inner");
  EXPECT_FALSE(storage.OpenForReading("../outer").file);
  EXPECT_FALSE(storage.OpenForReading("/etc/passwd").file);
  EXPECT_NE(storage.Remove("../outer"), 0);
}

TEST(StorageFolder, EmptiesAFileThatIsWrittenAgain) {
  const ScratchStorage scratch;
  scratch.Put("a", "12345");
  EXPECT_TRUE(StorageFolder(scratch.Path()).OpenForWriting("a").file);
  EXPECT_EQ(scratch.Get("a"), "");
}

TEST(StorageFolder, DeletesFilesButNoDirectory) {
  const ScratchStorage scratch;
  scratch.Put("DCIM/a", "1");
  const StorageFolder storage(scratch.Path());
  EXPECT_EQ(storage.Remove("DCIM/a"), 0);
  EXPECT_EQ(storage.Remove("DCIM/a"), ENOENT);
  EXPECT_NE(storage.Remove("DCIM"), 0);
  EXPECT_TRUE(scratch.Has("DCIM"));
}

TEST(StorageFolder, ListsByNameWithoutWhatTheCameraCannotSay) {
  const ScratchStorage scratch;
  scratch.Put("b", "22");
  scratch.Put("a/x", "1");
  scratch.Put("back\\slash", "1");
  scratch.Put(".kelva/state", "");
  const auto entries = StorageFolder(scratch.Path()).List("");
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].name, "a");
  EXPECT_TRUE(entries[0].isDirectory);
  EXPECT_EQ(entries[1].name, "b");
  EXPECT_EQ(entries[1].stamp.size, 2U);
}

TEST(StorageFolder, ReplacesAFileAsAWhole) {
  const ScratchStorage scratch;
  scratch.Put("a", "old and long");
  EXPECT_EQ(StorageFolder(scratch.Path()).Replace("a", "new", 0600), 0);
  EXPECT_EQ(scratch.Get("a"), "new");
  EXPECT_FALSE(scratch.Has("a.new"));
}

TEST(StorageFolder, ReplacesAFileAlsoWhereAnEarlierWriteBrokeOff) {
  const ScratchStorage scratch;
  scratch.Put("a.new", "half of what was to come");
  EXPECT_EQ(StorageFolder(scratch.Path()).Replace("a", "new", 0600), 0);
  EXPECT_EQ(scratch.Get("a"), "new");
}

TEST(StorageFolder, IsNoFile) {
  const ScratchStorage scratch;
  scratch.Put("a", "1");
  EXPECT_THROW(StorageFolder(scratch.Path() / "a"), std::runtime_error);
}

TEST(StorageFolder, AFileThatNobodyMayWriteIsReadOnly) {
  const ScratchStorage scratch;
  scratch.Put("a", "1");
  for (const mode_t mode : {0444U, 0555U, 0000U}) {
    ::chmod((scratch.Path() / "a").c_str(), mode);
    EXPECT_TRUE(StorageFolder(scratch.Path()).List("").at(0).isReadOnly) << mode;
  }
  for (const mode_t mode : {0200U, 0020U, 0002U}) {
    ::chmod((scratch.Path() / "a").c_str(), mode);
    EXPECT_FALSE(StorageFolder(scratch.Path()).List("").at(0).isReadOnly) << mode;
  }
}

}  // namespace
}  // namespace vcam
