// Each call on which a user's files rest fails in turn, with each error, under each verb that stores files.
#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <optional>
#include <sstream>

#include "apps/decoder/testing/TinyJpeg.h"
#include "apps/files/testing/RecordingCalls.h"
#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

// These tests flush thousands of files, and none of them asks whether a disk keeps them.
class ScratchInMemory {
 protected:
  ScratchInMemory() {
    if (const char* set = std::getenv("TMPDIR")) before_ = set;
    if (::access("/dev/shm", W_OK) == 0) ::setenv("TMPDIR", "/dev/shm", 1);
  }
  ~ScratchInMemory() { before_ ? ::setenv("TMPDIR", before_->c_str(), 1) : ::unsetenv("TMPDIR"); }

 private:
  std::optional<std::string> before_;
};

class FailingDiskTest : private ScratchInMemory, public VerbTest {
 protected:
  using Files = std::map<std::string, std::string>;

  FailingDiskTest() {
    // A sheet goes on without its cache, whatever fails there; DrawnBefore_test lets its calls fail.
    ::unsetenv("XDG_CACHE_HOME");
    ::unsetenv("HOME");
    Refill();
  }

  // The camera as it was, and nothing here.
  void Refill() {
    for (const auto& [name, content] : camera_) Put(name, content);
    fs::remove_all(out_);
    if (madeBefore_) fs::create_directory(out_);
  }
  void OnTheCamera(const Files& files) {
    camera_ = files;
    Refill();
  }
  std::string In(const std::string& name) const { return (out_ / name).string(); }

  // Runs the command until no call fails any more, and looks at what each run left behind.
  void Sweep(const std::vector<std::string>& words) {
    for (const int error : {EIO, ENOSPC, EDQUOT, EROFS, EACCES, ENOMEM, EINTR}) {
      int nth = 1;
      while (FailsAt(nth, error, words)) ++nth;
      EXPECT_GT(nth, fewest_);
    }
  }

  // Whether there is an nth call.
  bool FailsAt(int nth, int error, const std::vector<std::string>& words) {
    Refill();
    RecordingCalls calls(folder);
    calls.FailAt(nth, error);
    const Ran ran = Run(Pointers(words));
    const std::string where = Describe(calls, nth, error);
    CheckFiles(calls, where);
    if (error == EINTR || !calls.HasFailed()) {
      EXPECT_EQ(ran.code, ExitCode::kDone) << where << ran.err;
      return calls.HasFailed();
    }
    EXPECT_THAT(ran.code, AnyOf(ExitCode::kFailed, ExitCode::kPartial)) << where;
    EXPECT_THAT(ran.err, MatchesRegex("kelva: Cannot [^\n]*: [^\n]*\\.\n(kelva: Run the same command again[^\n]*\n)?"))
        << where;
    CheckAgain(Pointers(words), where);
    return true;
  }

  void CheckFiles(const RecordingCalls& calls, const std::string& where) const {
    EXPECT_THAT(calls.NamedUnflushed(), IsEmpty()) << where;
    if (fs::exists(out_)) {
      for (const auto& entry : fs::recursive_directory_iterator(out_)) {
        EXPECT_NE(entry.path().extension(), ".part") << where;
        if (entry.is_regular_file() && !entry.path().filename().string().starts_with(".kelva-manifest.")) {
          EXPECT_TRUE(IsWhole(entry.path())) << where << entry.path();
        }
      }
    }
    CheckDeletions(calls.Log(), where);
  }

  // What the camera has no more is here, whole, and its name was on disk before.
  void CheckDeletions(const std::vector<std::string>& log, const std::string& where) const {
    for (const auto& [name, content] : camera_) {
      if (Has(name)) continue;
      const fs::path here = here_(name);
      EXPECT_EQ(Text(out_ / here), content) << where << name;
      const auto named = std::find(log.begin(), log.end(), "rename " + ("out" / here).string());
      const auto flushed = std::find(named, log.end(), "flush folder " + ("out" / here).parent_path().string());
      EXPECT_NE(flushed, log.end()) << where << name;
    }
  }

  // The same command, when the disk is well, completes what is missing.
  void CheckAgain(const std::vector<const char*>& words, const std::string& where) {
    const Ran again = Run(words);
    // A file that got its name although its folder could not be flushed is there, and is kept.
    const bool kept = again.err.find(" already, and it was kept") != std::string::npos;
    EXPECT_TRUE(again.code == ExitCode::kDone || kept) << where << again.err;
    EXPECT_FALSE(fs::is_empty(out_)) << where;
  }

  static std::vector<const char*> Pointers(const std::vector<std::string>& words) {
    std::vector<const char*> pointers;
    for (const std::string& word : words) pointers.push_back(word.c_str());
    return pointers;
  }
  static std::string Describe(const RecordingCalls& calls, int nth, int error) {
    std::ostringstream text;
    text << "call " << nth << " fails with " << std::strerror(error) << ":\n";
    for (const std::string& line : calls.Log()) text << "  " << line << "\n";
    return text.str();
  }

  virtual bool IsWhole(const fs::path& file) const {
    const std::string text = Text(file);
    return std::any_of(camera_.begin(), camera_.end(), [&](const auto& entry) { return entry.second == text; });
  }

  const fs::path out_ = folder / "out";
  Files camera_;
  bool madeBefore_ = true;  ///< `out` is the user's
  int fewest_ = 5;          ///< calls that the command makes at least
  std::function<fs::path(const std::string&)> here_ = [](const std::string& name) { return fs::path(name).filename(); };
};

class GetOnFailingDiskTest : public FailingDiskTest {
 protected:
  GetOnFailingDiskTest() { OnTheCamera({{"A.TXT", "abc"}}); }
};

TEST_F(GetOnFailingDiskTest, TheOrderIsBytesThenNameThenFolder) {
  const RecordingCalls calls(folder);
  EXPECT_EQ(Run({"get", "I:/A.TXT", "--into", out_.c_str()}).code, ExitCode::kDone);
  EXPECT_THAT(calls.Log(), ElementsAre("create out/*.part", "write out/*.part", "flush out/*.part", "rename out/A.TXT",
                                       "flush folder out"));
}

TEST_F(GetOnFailingDiskTest, NoFailureLeavesHalfAFile) {
  Sweep({"get", "I:/A.TXT", "--into", out_.string()});
}

TEST_F(GetOnFailingDiskTest, NoFailureOfAReplacementLeavesHalfAFile) {
  Sweep({"get", "--force", "I:/A.TXT", "--into", out_.string()});
}

class ArchiveOnFailingDiskTest : public FailingDiskTest {
 protected:
  bool IsWhole(const fs::path& file) const override {
    const std::string text = Text(file);
    return text.ends_with(std::string(1024, '\0')) || text.ends_with("</html>\n");
  }
};

TEST_F(ArchiveOnFailingDiskTest, AReportIsWholeOrNotThere) {
  OnTheCamera({{"CRASH/A.LOG", "boom"}});
  Sweep({"report", In("report.tar")});
}

TEST_F(ArchiveOnFailingDiskTest, TheOrderOfASheetIsBytesThenNameThenFolder) {
  const RecordingCalls calls(folder);
  EXPECT_EQ(Run({"pictures", "--sheet", In("sheet.html").c_str()}).code, ExitCode::kDone);
  std::vector<std::string> log = calls.Log();
  log.erase(std::unique(log.begin(), log.end()), log.end());
  EXPECT_THAT(log, ElementsAre("create out/*.part", "write out/*.part", "flush out/*.part", "rename out/sheet.html",
                               "flush folder out"));
}

TEST_F(ArchiveOnFailingDiskTest, ASheetIsWholeOrNotThere) {
  OnTheCamera({{"DCIM/100ABCDE/IMG_0001.JPG", TinyJpeg::File(1, {90})}});
  Sweep({"pictures", "--sheet", In("sheet.html")});
  Sweep({"pictures", "--force", "--sheet", In("sheet.html")});
}

class SyncOnFailingDiskTest : public FailingDiskTest {
 protected:
  SyncOnFailingDiskTest() {
    madeBefore_ = false;
    fewest_ = 12;
    here_ = [](const std::string& name) { return fs::path(name).lexically_relative("DCIM"); };
    OnTheCamera({{"DCIM/100ABCDE/IMG_0001.JPG", "one"}, {"DCIM/100ABCDE/IMG_0002.JPG", "two"}});
  }
};

TEST_F(SyncOnFailingDiskTest, NoFailureLeavesHalfAFile) {
  Sweep({"sync", out_.string()});
}

TEST_F(SyncOnFailingDiskTest, NothingIsDeletedOnTheCameraThatIsNotOnDiskHere) {
  fewest_ = 14;
  Sweep({"sync", "--yes", "--delete-after-verify", out_.string()});
}

TEST_F(SyncOnFailingDiskTest, ASystemWithoutTheNewerCallsIsServedAllTheSame) {
  for (const int hardLinks : {0, EPERM}) {
    Refill();
    const RecordingCalls calls(folder, {.openBeneath = ENOSYS, .renameNoReplace = EINVAL, .hardLinks = hardLinks});
    EXPECT_EQ(Run({"sync", "--yes", "--delete-after-verify", out_.c_str()}).code, ExitCode::kDone);
    EXPECT_EQ(Text(out_ / "100ABCDE/IMG_0002.JPG"), "two");
    CheckFiles(calls, "");
  }
}

TEST_F(FailingDiskTest, ACrashLogIsDeletedOnTheCameraOnlyWhenItIsOnDiskHere) {
  madeBefore_ = false;
  OnTheCamera({{"CRASH/A.LOG", "boom"}});
  Sweep({"crash-logs", "--delete", "--into", out_.string()});
}

}  // namespace
}  // namespace apps
