// What the threads of an import do at once. ThreadSanitizer says whether they may.
#include <gtest/gtest.h>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/commandline/testing/SilentContext.h"
#include "apps/decoder/testing/TinyJpeg.h"
#include "apps/files/Sha1.h"
#include "apps/files/SystemCalls.h"
#include "apps/import/Folders.h"
#include "apps/import/PictureTimes.h"
#include "apps/import/Sync.h"
#include "apps/import/Writers.h"
#include "apps/import/testing/SyncTest.h"
#include "base/testing/Crowd.h"

namespace apps {
namespace {

/// The system's calls without the waits for a disk, and on request one that is full.
class QuickCalls : public SystemCalls {
 public:
  QuickCalls() : before_(FileCalls::Replace(*this)) {}
  ~QuickCalls() override { FileCalls::Replace(before_); }
  void BeginFlush(int) noexcept override {}
  int Flush(int) override { return 0; }
  int FlushFolder(int) override { return 0; }
  ssize_t Write(int file, std::string_view bytes) override {
    if (!full) return SystemCalls::Write(file, bytes);
    errno = ENOSPC;
    return -1;
  }

  std::atomic<bool> full = false;

 private:
  FileCalls& before_;
};

class Threads : public SyncFolderTest, protected SilentContext {
 protected:
  static std::vector<DcfObj> Pictures(int count, const std::string& key = "") {
    std::vector<DcfObj> pictures;
    for (int i = 1; i <= count; ++i) pictures.push_back(Picture(i, key));
    return pictures;
  }

  /// What the writers report to: not locked, since they report one at a time.
  Writers::Report Count() {
    return [this](const WriteOutcome& outcome) { ++(outcome.row ? stored_ : failed_); };
  }

  FakeCamera camera_;
  QuickCalls calls_;
  int stored_ = 0;
  int failed_ = 0;
};

constexpr char kAbcKey[] = "a9993e364706816aba3e25717850c26c9cd0d89d";

TEST_F(Threads, StoreRecordAndReportWhileMoreIsHandedOver) {
  const SyncPlan good = Plan(Pictures(1100));
  const SyncPlan bad = Plan(Pictures(500, kAbcKey));
  {
    Writers writers(folder_, manifest_, cuts_, Count());
    for (std::size_t i = 0; i < good.items.size(); ++i) {
      writers.Submit({&good.items[i], {'x'}, "", false});
      if (i < bad.items.size()) writers.Submit({&bad.items[i], {'x'}, "", false});
    }
    writers.Finish();
  }
  EXPECT_EQ(stored_, 1100);
  EXPECT_EQ(failed_, 500);
}

TEST_F(Threads, EndAtAnyMomentAndStoreWhatTheyHave) {
  const SyncPlan plan = Plan(Pictures(200));
  for (int round = 0; round < 15; ++round) {
    Writers writers(folder_, manifest_, cuts_, Count());
    for (const SyncItem& item : plan.items) {
      writers.Submit({&item, {'x'}, "", false});
      if (round % 2 == 0) writers.Abandon();
    }
  }
}

TEST_F(Threads, AbandonWhileTheOthersBegin) {
  for (int round = 0; round < 15; ++round) {
    Writers writers(folder_, manifest_, cuts_, Count());
    for (int i = 0; i < 5000; ++i) writers.Abandon();
  }
}

TEST_F(Threads, AllEndWhenTheDiskIsFull) {
  const SyncPlan plan = Plan(Pictures(60));
  calls_.full = true;
  for (int round = 0; round < 15; ++round) {
    Writers writers(folder_, manifest_, cuts_, Count());
    EXPECT_THROW(
        {
          for (const SyncItem& item : plan.items) writers.Submit({&item, std::vector<char>(100'000), "", false});
          writers.Finish();
        },
        Failure);
  }
  EXPECT_EQ(stored_, 0);
}

TEST_F(Threads, ReadLargeFilesInPiecesWhileOthersAreFlushed) {
  camera_.open = true;
  camera_.folder = "I:\\DCIM\\100ABCDE";
  for (int i = 1; i <= 12; ++i)
    camera_.files["IMG_" + std::to_string(10'000 + i).substr(1) + ".JPG"] = std::string(3'000'000, 'x');
  for (const bool verify : {false, true}) {
    std::vector<DcfObj> catalogue = Pictures(12);
    for (DcfObj& picture : catalogue) picture.block7[0] = verify ? 'v' : 'o';
    const SyncPlan plan = Plan(catalogue);
    Sync sync(context_, Shared(camera_), folder_, manifest_, {.verify = verify});
    EXPECT_FALSE(sync.Run(plan).has_value());
    EXPECT_EQ(sync.Totals().stored, 12U);
  }
}

TEST_F(Threads, LargeFilesEndWhenTheDiskIsFull) {
  camera_.open = true;
  camera_.folder = "I:\\DCIM\\100ABCDE";
  camera_.files["IMG_0001.JPG"] = camera_.files["IMG_0002.JPG"] = std::string(5'000'000, 'x');
  const SyncPlan plan = Plan(Pictures(2));
  calls_.full = true;
  for (int round = 0; round < 15; ++round) {
    Sync sync(context_, Shared(camera_), folder_, manifest_, {});
    EXPECT_TRUE(sync.Run(plan).has_value());
  }
}

TEST_F(Threads, AskForFoldersWhileTheyAreFlushed) {
  Folders folders(folder_);
  std::atomic<int> next = 0;
  const auto ask = [&] { folders.For({{"2026", std::to_string(next++ % 300)}, "A.JPG"}); };
  const base::Crowd crowd(200, {ask, ask, ask, [&] { folders.Flush({{"2026", std::to_string(next % 300)}}); }});
}

TEST_F(Threads, LookUpWhatIsRecordedMeanwhile) {
  const auto row = [](const std::string& name, int number) {
    return ManifestRow{{"K1", name + std::to_string(number), 1, "print"}, name, kAbcKey, 1, true, false};
  };
  const auto record = [&](const std::string& name) {
    return [&row, name, number = 0, this]() mutable {
      manifest_.Record({row(name, ++number)});
      manifest_.MarkDeleted({row(name, number).key});
      EXPECT_EQ(manifest_.Find(row(name, number).key)->path, name);
    };
  };
  const base::Crowd crowd(15, {record("a"), record("b"), record("c")});
}

TEST_F(Threads, AskForTimesWhileOthersAreAnswered) {
  PictureTimes times;
  const std::vector<DcfObj> pictures = Pictures(300);
  const std::string start = "\xFF\xD8" + TinyJpeg::ExifPart(1, "2026:03:14 15:09:26");
  std::atomic<std::size_t> asked = 0;
  const auto ask = [&] { times.Ask(pictures[asked++], start); };
  const auto take = [&] {
    times.Of(pictures[asked / 2]);
    times.WasAsked(pictures[0]);
    times.Trouble();
  };
  { const base::Crowd crowd(150, {ask, ask, take, take}); }
  for (const DcfObj& picture : pictures) EXPECT_EQ(times.Of(picture), ParseTaken("2026-03-14 15:09:26"));
}

TEST_F(Threads, ReadCompareAndReportWhileOthersStoreAndReport) {
  camera_.open = true;
  camera_.folder = "I:\\DCIM\\100ABCDE";
  std::vector<DcfObj> catalogue = Pictures(1600);
  std::vector<ManifestRow> known;
  for (std::size_t i = 0; i < catalogue.size(); ++i) {
    // One of 16 is not there, which the reader reports; one has another key, which a writer reports and the
    // reader looks at again; two are stored;
    // the others are compared with what is known of them.
    if (i % 16 == 1) std::memcpy(catalogue[i].block7, kAbcKey, sizeof kAbcKey - 1);
    if (i % 16 != 0) camera_.files["IMG_" + std::to_string(10'001 + i).substr(1) + ".JPG"] = "x";
    if (i % 16 > 3)
      known.push_back({KeyOf(catalogue[i], 1, "K1"), "gone.jpg", Sha1(std::vector<char>{'x'}), 1, true, false});
  }
  manifest_.Record(known);
  const SyncPlan plan = Plan(catalogue);
  camera_.refuses = true;
  Sync sync(context_, Shared(camera_), folder_, manifest_, {.verify = true, .deleteAfter = true});
  EXPECT_FALSE(sync.Run(plan).has_value());
  EXPECT_EQ(sync.Totals().stored, 100U + 200U);
  EXPECT_EQ(sync.Totals().failed, 100U + 1200U + 300U) << "what is gone or refused is not deleted";
}

}  // namespace
}  // namespace apps
