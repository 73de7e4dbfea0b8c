// A sync in worker processes, when one of them ends in the middle of a file.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <iostream>

#include "apps/commandline/Aborts.h"
#include "apps/commandline/Guard.h"
#include "apps/import/testing/SyncFixture.h"

namespace apps {
namespace {

using testing::ExitedWithCode;

class SyncWorkersDeathTest : public SyncTest {
 protected:
  /// Ends this process as the last worker ended. That one writes to standard error what it did.
  [[noreturn]] void RunInWorkers(const std::vector<DcfObj>& catalogue, SyncOptions options = {}) {
    const auto work = [&](Guard& guard) {
      CatchAborts("aborted", "", -1);
      context_.guard = &guard;
      const SyncTotals totals = Run(options, catalogue);
      std::cerr << totals.stored << " stored (" << totals.bytes << " bytes), " << totals.failed << " failed in all, "
                << camera_.reads << " read by the last process" << std::flush;
      return 0;
    };
    ::_exit(Guard::Run(work, [this](const std::string& sentence) { reporter_.Note(sentence); }));
  }
  /// What happens to the process that reads a file.
  void AtTheReadOf(const std::string& name, const std::function<void()>& happens) {
    camera_.onRead = [name, happens](const std::string& path) {
      if (path.ends_with(name)) happens();
    };
  }
};

TEST_F(SyncWorkersDeathTest, AFileAtWhichTheProcessAbortedIsLeftOutAndTheRestIsStored) {
  AtTheReadOf("IMG_0001.JPG", [] { std::abort(); });
  EXPECT_EXIT(RunInWorkers({Picture(1), Picture(2)}), ExitedWithCode(0),
              "^1 stored \\(3 bytes\\), 1 failed in all, 1 read ");
  EXPECT_EQ(Said(),
            "kelva: The process that read I:/DCIM/100ABCDE/IMG_0001.JPG aborted, so the file was left out; what was "
            "printed before says why.\n");
  EXPECT_EQ(Text("100ABCDE/IMG_0002.JPG"), "two");
}

TEST_F(SyncWorkersDeathTest, AFileAtWhichTwoProcessesWereKilledIsLeftOut) {
  AtTheReadOf("IMG_0001.JPG", [] { ::kill(::getpid(), SIGKILL); });
  EXPECT_EXIT(RunInWorkers({Picture(1), Picture(2)}), ExitedWithCode(0),
              "^1 stored \\(3 bytes\\), 1 failed in all, 1 read ");
  EXPECT_EQ(Said(),
            "kelva: The process that read I:/DCIM/100ABCDE/IMG_0001.JPG was killed (signal 9, Killed), as happens "
            "when memory runs out; another one tries that file once more.\n"
            "kelva: Two processes that read I:/DCIM/100ABCDE/IMG_0001.JPG were killed, so the file was left out; "
            "close other programs and try again.\n");
}

TEST_F(SyncWorkersDeathTest, AFailureIsSaidOnceAndItsFileIsNotReadByTheNextProcess) {
  camera_.files.erase("IMG_0001.JPG");
  camera_.files["IMG_0003.JPG"] = "three";
  AtTheReadOf("IMG_0002.JPG", [] { std::abort(); });
  EXPECT_EXIT(RunInWorkers({Picture(1), Picture(2), Picture(3)}), ExitedWithCode(0),
              "^1 stored \\(5 bytes\\), 2 failed in all, 1 read ");
  const std::string said = Said();
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 2) << said;
}

TEST_F(SyncWorkersDeathTest, AnAbortDuringADeletionIsNotBlamedOnTheFileReadLast) {
  camera_.onDelete = [](const std::string&) { std::abort(); };
  EXPECT_EXIT(RunInWorkers({Picture(1)}, kVerifyAndDelete), ExitedWithCode(1), "^aborted$");
}

TEST_F(SyncWorkersDeathTest, AnAbortAfterAReadThatFailedIsNotBlamedOnThatFile) {
  camera_.onRead = [](const std::string& path) {
    if (path.ends_with("IMG_0002.JPG")) throw CameraError("no such file");
  };
  camera_.onDelete = [this](const std::string&) {
    std::cerr << camera_.reads << " read" << std::flush;
    std::abort();
  };
  EXPECT_EXIT(RunInWorkers({Picture(1), Picture(2)}, kVerifyAndDelete), ExitedWithCode(1), "^4 readaborted$");
}

}  // namespace
}  // namespace apps
