#include "vcam/device/DataSet.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "vcam/camera/testing/TestSupport.h"

namespace vcam {
namespace {

using test::AsText;
using test::ScratchStorage;

std::string ReadAll(DataSet& data, const Storage& storage, std::uint64_t offset, std::size_t length) {
  base::Bytes out(length);
  return data.Read(storage, offset, out) ? AsText(out) : "failed";
}

TEST(DataSet, RunsMemoryAndFilesTogether) {
  const ScratchStorage scratch;
  scratch.Put("x", "file");
  scratch.Put("y", "second");
  const Storage storage(scratch.Path());
  DataSet data;
  data.AddBytes({'m', 'e', 'm'});
  data.AddFile("x", 4);
  data.AddBytes({});
  data.AddFile("y", 6);
  EXPECT_EQ(data.Size(), 13U);
  EXPECT_EQ(ReadAll(data, storage, 0, 13), "memfilesecond");
  EXPECT_EQ(ReadAll(data, storage, 2, 3), "mfi");
  EXPECT_EQ(ReadAll(data, storage, 12, 1), "d");
  EXPECT_EQ(ReadAll(data, storage, 13, 0), "");
}

TEST(DataSet, KeepsAnOpenFileThatIsDeleted) {
  const ScratchStorage scratch;
  scratch.Put("x", "file");
  const Storage storage(scratch.Path());
  DataSet data;
  data.AddOpenFile(storage.OpenForReading("x").file, 4);
  storage.Remove("x");
  EXPECT_EQ(ReadAll(data, storage, 1, 3), "ile");
}

/// How many descriptors of this process are of a file.
int OpenDescriptorsOf(const std::filesystem::path& path) {
  struct stat wanted {};
  if (::stat(path.c_str(), &wanted) != 0) return -1;
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/dev/fd")) {
    struct stat found {};
    if (::fstat(std::stoi(entry.path().filename()), &found) != 0) continue;
    if (found.st_dev == wanted.st_dev && found.st_ino == wanted.st_ino) ++count;
  }
  return count;
}

TEST(DataSet, OpensItsFilesOneAtATime) {
  const ScratchStorage scratch;
  scratch.Put("x", "file");
  scratch.Put("y", "second");
  const Storage storage(scratch.Path());
  DataSet data;
  data.AddFile("x", 4);
  data.AddFile("y", 6);
  EXPECT_EQ(ReadAll(data, storage, 0, 4), "file");
  EXPECT_EQ(OpenDescriptorsOf(scratch.Path() / "x"), 1);
  EXPECT_EQ(ReadAll(data, storage, 4, 6), "second");
  EXPECT_EQ(OpenDescriptorsOf(scratch.Path() / "x"), 0);
  EXPECT_EQ(OpenDescriptorsOf(scratch.Path() / "y"), 1);
}

TEST(DataSet, LeavesAFileThatCameOpenAsItIs) {
  const ScratchStorage scratch;
  scratch.Put("x", "file");
  scratch.Put("y", "second");
  const Storage storage(scratch.Path());
  DataSet data;
  data.AddOpenFile(storage.OpenForReading("x").file, 4);
  data.AddFile("y", 6);
  storage.Remove("x");
  EXPECT_EQ(ReadAll(data, storage, 0, 10), "filesecond");
  EXPECT_EQ(ReadAll(data, storage, 0, 10), "filesecond");
}

TEST(DataSet, FailsWhenAFileHasLostItsBytes) {
  const ScratchStorage scratch;
  scratch.Put("x", "fil");
  const Storage storage(scratch.Path());
  DataSet data;
  data.AddFile("x", 4);
  EXPECT_EQ(ReadAll(data, storage, 0, 3), "fil");
  EXPECT_EQ(ReadAll(data, storage, 0, 4), "failed");
  DataSet missing;
  missing.AddFile("y", 4);
  EXPECT_EQ(ReadAll(missing, storage, 0, 1), "failed");
}

}  // namespace
}  // namespace vcam
