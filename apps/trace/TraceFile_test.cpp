#include "apps/trace/TraceFile.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <sstream>
#include <thread>
#include <vector>

#include "apps/commandline/Aborts.h"
#include "apps/commandline/Failure.h"
#include "base/testing/ScratchFolder.h"

namespace apps {
namespace {

const std::string kHeader = std::string(kTraceStart) + "1}\n";

class TraceFileTest : public testing::Test {
 protected:
  TraceFile Open() {
    return TraceFile(path_.string(), [this](const std::string& sentence) { complaints_.push_back(sentence); });
  }
  void Put(const std::string& text) const { std::ofstream(path_) << text; }
  static void AddAndFlush(TraceFile& file, const std::string& line) {
    file.Add(line);
    file.Flush();
  }
  std::string Text() const {
    std::stringstream text;
    text << std::ifstream(path_).rdbuf();
    return text.str();
  }
  unsigned Mode() const {
    struct stat status {};
    return ::stat(path_.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
  }
  std::string Refused() {
    try {
      Open();
    } catch (const Failure& failure) {
      return failure.what();
    }
    return "";
  }

  const base::ScratchFolder folder_;
  const std::filesystem::path path_ = folder_.Path() / "camera.trace";
  std::vector<std::string> complaints_;
};

TEST_F(TraceFileTest, OnlyItsOwnerMayReadANewFile) {
  const mode_t before = ::umask(0);
  { Open().Add(kHeader); }
  ::umask(before);
  EXPECT_EQ(Mode(), 0600U);
  EXPECT_EQ(Text(), kHeader);
}

TEST_F(TraceFileTest, ATraceThatIsThereIsAddedTo) {
  Put(kHeader + "{\"event\":\"exchange\"}\n");
  ::chmod(path_.c_str(), 0644);
  TraceFile file = Open();
  AddAndFlush(file, kHeader);
  EXPECT_EQ(Text(), kHeader + "{\"event\":\"exchange\"}\n" + kHeader);
  EXPECT_EQ(Mode(), 0600U);
}

TEST_F(TraceFileTest, AnEmptyFileIsTaken) {
  Put("");
  Open().Add(kHeader);
  EXPECT_EQ(Text(), kHeader);
}

TEST_F(TraceFileTest, AFileOfAnotherKindIsKept) {
  Put("my holidays");
  EXPECT_NE(Refused().find("it is not a trace; it was kept"), std::string::npos) << Refused();
  EXPECT_EQ(Text(), "my holidays");
  EXPECT_NE(Mode(), 0600U);
}

TEST_F(TraceFileTest, ALinkIsNotFollowed) {
  std::filesystem::create_symlink("elsewhere", path_);
  EXPECT_NE(Refused().find("it is a symbolic link"), std::string::npos) << Refused();
  EXPECT_FALSE(std::filesystem::exists(folder_.Path() / "elsewhere"));
}

TEST_F(TraceFileTest, AFileWithAnotherNameIsKept) {
  Put(kHeader);
  std::filesystem::create_hard_link(path_, folder_.Path() / "other");
  EXPECT_NE(Refused().find("it has another name too"), std::string::npos) << Refused();
}

TEST_F(TraceFileTest, APipeIsRefusedWithoutWaitingForAReader) {
  ASSERT_EQ(::mkfifo(path_.c_str(), 0600), 0);
  EXPECT_NE(Refused().find("it is not a regular file"), std::string::npos) << Refused();
}

TEST_F(TraceFileTest, AFileOfAnotherUserIsKept) {
  // Only root can give a file away, and only root could write to a file of root's.
  if (::geteuid() != 0) {
    EXPECT_THROW(TraceFile("/etc/passwd", nullptr), Failure);
    return;
  }
  Put(kHeader);
  ASSERT_EQ(::chown(path_.c_str(), 65534, 65534), 0);
  EXPECT_NE(Refused().find("it belongs to somebody else"), std::string::npos) << Refused();
}

TEST_F(TraceFileTest, AFolderThatIsMissingIsAFailure) {
  EXPECT_THROW(TraceFile((folder_.Path() / "none" / "trace").string(), nullptr), Failure);
  EXPECT_THROW(TraceFile("", nullptr), Failure);
}

TEST_F(TraceFileTest, AFullDiskEndsTheTraceWithOneComplaint) {
  TraceFile file = Open();
  AddAndFlush(file, kHeader);
  const rlimit none{kHeader.size() + 4, RLIM_INFINITY};
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &none), 0);
  AddAndFlush(file, "a line that does not fit\n");
  AddAndFlush(file, "x\n");
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
  std::signal(SIGXFSZ, handler);
  ASSERT_EQ(complaints_.size(), 1U);
  EXPECT_NE(complaints_[0].find("ends early, because it cannot be written"), std::string::npos) << complaints_[0];
  AddAndFlush(file, "and nothing follows\n");
  EXPECT_EQ(Text(), kHeader + "a li");
}

TEST_F(TraceFileTest, LinesAreWrittenInGroups) {
  TraceFile file = Open();
  AddAndFlush(file, kHeader);
  file.Add("first\n");
  EXPECT_EQ(Text(), kHeader);
  const std::string rest(65536, 'x');
  file.Add(rest);
  EXPECT_EQ(Text(), kHeader + "first\n" + rest);
}

TEST_F(TraceFileTest, AnAbortLosesNoLine) {
  const auto abort = [this] {
    TraceFile file = Open();
    AddAndFlush(file, kHeader);
    file.Add("the last line\n");
    CatchAborts("", "", -1);
    std::abort();
  };
  EXPECT_EXIT(abort(), testing::ExitedWithCode(1), "");
  EXPECT_EQ(Text(), kHeader + "the last line\n");
}

TEST_F(TraceFileTest, ContentsAreReadBackFromTheBeginningOfALine) {
  TraceFile file = Open();
  EXPECT_EQ(file.Contents(100), "");
  AddAndFlush(file, "first\n");
  AddAndFlush(file, "second\n");
  EXPECT_EQ(file.Contents(100), "first\nsecond\n");
  EXPECT_EQ(file.Contents(13), "first\nsecond\n");
  EXPECT_EQ(file.Contents(9), "second\n");
  EXPECT_EQ(file.Contents(3), "");
}

TEST_F(TraceFileTest, ContentsLeaveOutWhatWasInTheFileBefore) {
  Put(kHeader + "the serial number\n");
  TraceFile file = Open();
  EXPECT_EQ(file.Contents(1000), "");
  AddAndFlush(file, kHeader);
  AddAndFlush(file, "second\n");
  EXPECT_EQ(file.Contents(1000), kHeader + "second\n");
  EXPECT_EQ(file.Contents(kHeader.size() + 7), kHeader + "second\n");
  EXPECT_EQ(file.Contents(10), "second\n");
}

TEST_F(TraceFileTest, ATornLastLineIsEndedFirst) {
  Put(kHeader + "{\"event\":\"exch");
  TraceFile file = Open();
  AddAndFlush(file, kHeader);
  EXPECT_EQ(Text(), kHeader + "{\"event\":\"exch\n" + kHeader);
  EXPECT_EQ(file.Contents(1000), kHeader);
}

TEST_F(TraceFileTest, ALineWithoutMemoryEndsTheTraceAfterTheLinesBeforeIt) {
  TraceFile file = Open();
  AddAndFlush(file, kHeader);
  file.Add("before\n");
  file.Add(std::string_view("longer than any memory", ~std::size_t{0}));
  AddAndFlush(file, "after\n");
  EXPECT_EQ(Text(), kHeader + "before\n");
  ASSERT_EQ(complaints_.size(), 1U);
  EXPECT_NE(complaints_[0].find("ends early, because it cannot be written"), std::string::npos) << complaints_[0];
}

TEST_F(TraceFileTest, TheEndWritesEverything) {
  TraceFile file = Open();
  AddAndFlush(file, kHeader);
  file.Add("first\n");
  file.AddAtEnd("last\n");
  EXPECT_EQ(Text(), kHeader + "first\nlast\n");
}

// A complaint that is not taken holds its writer as a disk does that does not answer.
TEST_F(TraceFileTest, TheEndDoesNotWaitForAThreadThatSitsInAWrite) {
  std::promise<void> blocked;
  std::promise<void> release;
  TraceFile file(path_.string(), [&](const std::string&) {
    blocked.set_value();
    release.get_future().wait();
  });
  std::thread writer([&] { file.Add(std::string_view("longer than any memory", ~std::size_t{0})); });
  blocked.get_future().wait();
  auto end = std::async(std::launch::async, [&] { file.AddAtEnd("last\n"); });
  EXPECT_EQ(end.wait_for(std::chrono::seconds(10)), std::future_status::ready);
  release.set_value();
  writer.join();
}

}  // namespace
}  // namespace apps
