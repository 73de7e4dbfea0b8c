#include "apps/files/NewFile.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Scratch.h"
#include "apps/files/SystemCalls.h"
#include "apps/files/testing/RecordingCalls.h"
#include "base/FileDescriptor.h"
#include "base/testing/ScratchFolder.h"
#include "platform/Files.h"

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

  unsigned ModeOf(const std::string& name) const {
    return static_cast<unsigned>(fs::status(path_ / name).permissions());
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

// 2026-03-14 15:09:26 UTC.
constexpr std::time_t kTaken = 1'773'500'966;

TEST_F(NewFileTest, TheTimeOfAFileIsThatOfItsPicture) {
  RecordingCalls calls(path_);
  NewFile file(*folder_);
  file.Write(std::string("whole"));
  file.SetTime(kTaken);
  file.Flush();
  EXPECT_TRUE(file.TakeName("IMG_0001.JPG"));
  struct stat status {};
  EXPECT_EQ(::stat((path_ / "IMG_0001.JPG").c_str(), &status), 0);
  EXPECT_EQ(platform::ContentChanged(status).tv_sec, kTaken);
  EXPECT_EQ(platform::ContentChanged(status).tv_nsec, 0);
  EXPECT_THAT(calls.Log(),
              ElementsAre("create *.part", "write *.part", "time *.part", "flush *.part", "rename IMG_0001.JPG"));
}

TEST_F(NewFileTest, AFileSystemWithoutTimesIsNoFailureAndABrokenDiskIs) {
  RecordingCalls calls(path_);
  NewFile file(*folder_);
  for (const int error : {EPERM, EINVAL, ENOSYS, EOPNOTSUPP, EINTR}) {
    calls.FailAt(1, error, "time");
    EXPECT_NO_THROW(file.SetTime(kTaken)) << error;
    EXPECT_TRUE(calls.HasFailed());
  }
  for (const int error : {EIO, ENOSPC, EROFS}) {
    calls.FailAt(1, error, "time");
    EXPECT_THROW(file.SetTime(kTaken), Failure) << error;
  }
}

TEST_F(NewFileTest, AFileThatIsNotFinishedLeavesNothing) {
  { NewFile(*folder_).Write(std::string("half")); }
  EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(NewFileTest, AFileThatIsKeptStaysAndCanBeTakenUp) {
  std::string temporary;
  {
    NewFile file(*folder_);
    file.Write(std::string("half"));
    file.Keep();
    temporary = file.TemporaryName();
    EXPECT_EQ(NewFile::TakeUp(*folder_, temporary), nullptr) << "in use";
    RemoveScratchFiles();
  }
  EXPECT_THAT(Names(), ElementsAre(temporary));
  const auto file = NewFile::TakeUp(*folder_, temporary);
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(file->Size(), 4U);
  file->Write(std::string(" and half"));
  EXPECT_TRUE(file->HoldsAt(3, std::string("f and")));
  EXPECT_FALSE(file->HoldsAt(3, std::string("f or ")));
  EXPECT_FALSE(file->HoldsAt(9, std::string("half and more")));
  std::string all;
  file->ReadBack([&](std::span<const char> bytes) { all.append(bytes.begin(), bytes.end()); });
  EXPECT_EQ(all, "half and half");
  EXPECT_TRUE(file->TakeName("A"));
  EXPECT_EQ(Text("A"), "half and half");
}

TEST_F(NewFileTest, AFileThatIsKeptNoLongerGoes) {
  std::string temporary;
  {
    NewFile file(*folder_);
    file.Keep();
    temporary = file.TemporaryName();
  }
  NewFile::TakeUp(*folder_, temporary)->Drop();
  EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(NewFileTest, NothingButAPlainFileIsTakenUp) {
  Put("A", "abc");
  fs::create_symlink("A", path_ / ".kelva-1.part");
  ASSERT_EQ(::mkfifo((path_ / ".kelva-2.part").c_str(), 0600), 0);
  for (const char* name : {".kelva-1.part", ".kelva-2.part", ".kelva-3.part", "../A"}) {
    EXPECT_EQ(NewFile::TakeUp(*folder_, name), nullptr) << name;
  }
}

/// The system's calls, beside a sweep that holds the first file that is made and never comes to remove it.
class SweptCalls : public SystemCalls {
 public:
  SweptCalls() : before_(FileCalls::Replace(*this)) {}
  ~SweptCalls() override { FileCalls::Replace(before_); }
  int Create(int folder, const std::string& name) override {
    ++created;
    const int file = SystemCalls::Create(folder, name);
    if (!sweep_) {
      sweep_ = base::FileDescriptor(SystemCalls::Open(folder, name, O_RDONLY));
      EXPECT_EQ(::flock(sweep_.Get(), LOCK_EX | LOCK_NB), 0);
    }
    return file;
  }

  int created = 0;

 private:
  base::FileDescriptor sweep_;
  FileCalls& before_;
};

TEST_F(NewFileTest, AFileThatASweepHoldsIsLeftForAnotherAndRemoved) {
  const SweptCalls calls;
  {
    NewFile file(*folder_);
    EXPECT_EQ(calls.created, 2);
    EXPECT_EQ(Names().size(), 1U);
    file.Write(std::string("whole"));
    EXPECT_TRUE(file.TakeName("A"));
  }
  EXPECT_THAT(Names(), ElementsAre("A"));
}

TEST_F(NewFileTest, AProcessThatIsAbortedCanStillRemoveIt) {
  const NewFile file(*folder_);
  EXPECT_EQ(Names().size(), 1U);
  RemoveScratchFiles();
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

TEST_F(NewFileTest, OnlyItsOwnerCanOpenAFileThatHasNoNameYet) {
  const mode_t before = ::umask(0);
  const NewFile file(*folder_);
  ::umask(before);
  EXPECT_EQ(ModeOf(Names().at(0)), 0600U);
}

TEST_F(NewFileTest, ANamedFileHasThePermissionsOfAnyNewFile) {
  const mode_t before = ::umask(0);
  for (const mode_t mask : {0022U, 0077U, 0000U, 0007U}) {
    ::umask(mask);
    const TargetFolder folder = TargetFolder::Open(path_);
    const std::string name = std::to_string(mask);
    EXPECT_TRUE(NewFile(folder).TakeName(name));
    EXPECT_EQ(ModeOf(name), 0666U & ~mask);
    EXPECT_TRUE(NewFile(folder, Readers::kOwner).TakeName(name + " private"));
    EXPECT_EQ(ModeOf(name + " private"), 0600U);
  }
  ::umask(before);
}

TEST_F(NewFileTest, AWriteThatTakesAFewBytesIsContinued) {
  RecordingCalls calls(path_);
  calls.WriteAtMost(3);
  NewFile file(*folder_);
  file.Write(std::string("whole file"));
  EXPECT_TRUE(file.TakeName("A"));
  EXPECT_EQ(Text("A"), "whole file");
}

TEST_F(NewFileTest, TheDiskBeginsToTakeALargeFileWhileItIsWritten) {
  const RecordingCalls calls(path_);
  NewFile file(*folder_);
  const std::string megabyte(1 << 20, 'x');
  for (int i = 0; i < 25; ++i) file.Write(megabyte);
  // With 8, 16 and 24 of the 25 megabytes.
  EXPECT_EQ(calls.Begun(), std::size_t{8 + 16 + 24} << 20);
}

TEST_F(NewFileTest, ASignalInAnyCallChangesNothing) {
  RecordingCalls calls(path_);
  for (int nth = 1; nth <= 4; ++nth) {
    calls.FailAt(nth, EINTR);
    NewFile file(*folder_);
    file.Write(std::string("whole"));
    file.Flush();
    EXPECT_TRUE(file.TakeName(std::to_string(nth)));
    EXPECT_TRUE(calls.HasFailed());
    EXPECT_EQ(Text(std::to_string(nth)), "whole");
  }
  EXPECT_EQ(Names().size(), 4U);
}

TEST_F(NewFileTest, AFailureOfAnyCallIsSaidAndLeavesNothing) {
  RecordingCalls calls(path_);
  for (const int error : {EIO, ENOSPC, EDQUOT, EROFS, EACCES}) {
    for (int nth = 1; nth <= 4; ++nth) {
      calls.FailAt(nth, error);
      try {
        NewFile file(*folder_);
        file.Write(std::string("whole"));
        file.Flush();
        file.TakeName("A");
        FAIL();
      } catch (const Failure& failure) {
        EXPECT_EQ(failure.SystemError(), error);
      }
      EXPECT_THAT(Names(), IsEmpty());
    }
  }
}

// Stands for a sweep that comes between the making of a file and its lock.
class SweepingCalls : public SystemCalls {
 public:
  explicit SweepingCalls(int sweeps) : left(sweeps), before_(Replace(*this)) {}
  ~SweepingCalls() override { Replace(before_); }

  int Create(int folder, const std::string& name) override {
    const int file = SystemCalls::Create(folder, name);
    if (left-- > 0) ::unlinkat(folder, name.c_str(), 0);
    return file;
  }

  int left;

 private:
  FileCalls& before_;
};

TEST_F(NewFileTest, AFileThatASweepTookBeforeItsLockIsMadeAnew) {
  const SweepingCalls sweep(3);
  NewFile file(*folder_);
  file.Write(std::string("whole"));
  EXPECT_TRUE(file.TakeName("A"));
  EXPECT_EQ(Text("A"), "whole");
}

TEST_F(NewFileTest, SweepsWithoutEndAreAFailureInWords) {
  const SweepingCalls sweep(1 << 30);
  try {
    const NewFile file(*folder_);
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_THAT(failure.what(), testing::StartsWith("Cannot lock a file in "));
  }
  EXPECT_EQ(sweep.left, (1 << 30) - 100);
}

TEST_F(NewFileTest, TheErrorOfAnEarlierCallDoesNotCount) {
  errno = EWOULDBLOCK;
  EXPECT_NO_THROW(NewFile{*folder_});
  errno = EEXIST;
  NewFile file(*folder_);
  errno = EEXIST;
  EXPECT_TRUE(file.TakeName("A"));
}

}  // namespace
}  // namespace apps
