#include "apps/import/Writers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <latch>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

#include "apps/commandline/Output.h"
#include "apps/files/SystemCalls.h"
#include "apps/files/testing/RecordingCalls.h"
#include "apps/import/testing/SyncTest.h"
#include "platform/Processors.h"

namespace apps {
namespace {

class WritersTest : public SyncFolderTest {
 protected:
  // On the heap: ThreadSanitizer takes the mutexes of two tests that stood at one place of the stack for one.
  std::unique_ptr<Writers> Make(Writers::Report report) {
    return std::make_unique<Writers>(folder_, manifest_, cuts_, std::move(report));
  }
  void Store(const SyncPlan& plan, const std::string& text) {
    const auto writers = Make([this](const WriteOutcome& outcome) {
      stored_ += outcome.row ? 1 : 0;
      errors_ += outcome.error + (outcome.unlikeKey.empty() ? "" : "unlike its key: " + outcome.unlikeKey);
    });
    for (const SyncItem& item : plan.items) writers->Submit({&item, {text.begin(), text.end()}, "", false});
    writers->Finish();
  }

  int stored_ = 0;
  std::string errors_;
};

TEST_F(WritersTest, FilesAreStoredAndPartOfTheManifest) {
  std::vector<DcfObj> catalogue;
  for (int i = 1; i <= 200; ++i) catalogue.push_back(Picture(i));
  Store(Plan(catalogue), "abc");
  EXPECT_EQ(stored_, 200);
  EXPECT_EQ(Text("100ABCDE/IMG_0200.JPG"), "abc");
  EXPECT_EQ(Plan(catalogue).NewFiles(), 0U);
}

TEST_F(WritersTest, TheManifestSaysWhatWasStoredAndWhere) {
  std::filesystem::create_directory(path_ + "/100ABCDE");
  std::ofstream(path_ + "/100ABCDE/IMG_0001.JPG") << "another";
  const SyncPlan plan = Plan({Picture(1), Picture(2)});
  const auto writers = Make([](const WriteOutcome&) {});
  writers->Submit({&plan.items[0], {'a', 'b', 'c'}, "", true});
  writers->Submit({&plan.items[1], {'a', 'b', 'c'}, "", false});
  writers->Finish();
  const auto row = manifest_.Find(plan.items[0].Key());
  ASSERT_TRUE(row.has_value());
  EXPECT_EQ(row->path, "100ABCDE/IMG_0001-2.JPG");
  EXPECT_EQ(row->sha1, "a9993e364706816aba3e25717850c26c9cd0d89d");
  EXPECT_EQ(row->size, 3U);
  EXPECT_TRUE(row->verified);
  EXPECT_FALSE(row->deleted);
  EXPECT_FALSE(manifest_.Find(plan.items[1].Key())->verified);
}

TEST_F(WritersTest, LargeFilesPassOneAtATime) {
  const SyncPlan plan = Plan({Picture(1), Picture(2), Picture(3)});
  Store(plan, std::string(5'000'000, 'x'));
  EXPECT_EQ(stored_, 3);
  EXPECT_EQ(Text("100ABCDE/IMG_0003.JPG").size(), 5'000'000U);
}

TEST_F(WritersTest, AFileThatIsNotWhatItsKeySaysIsNotKept) {
  const SyncPlan plan = Plan({Picture(1, "a9993e364706816aba3e25717850c26c9cd0d89d")});
  Store(plan, "damaged");
  EXPECT_EQ(stored_, 0);
  EXPECT_EQ(errors_, "unlike its key: d9814db59cfe5e862cc98797296b9af679e71180");
  EXPECT_FALSE(std::filesystem::exists(path_ + "/100ABCDE/IMG_0001.JPG"));
}

TEST_F(WritersTest, ALinkInPlaceOfAFolderIsAnErrorOfThatFile) {
  std::filesystem::create_directory_symlink("/tmp", path_ + "/100ABCDE");
  Store(Plan({Picture(1)}), "abc");
  EXPECT_EQ(stored_, 0);
  EXPECT_NE(errors_.find("is a symbolic link and is not followed"), std::string::npos);
}

TEST_F(WritersTest, WhatIsStoredIsRecordedAlsoWhenNobodyWaitsForTheEnd) {
  const SyncPlan plan = Plan({Picture(1)});
  {
    Make([](const WriteOutcome&) {})->Submit({plan.items.data(), {'a'}, "", false});
  }
  EXPECT_EQ(Text("100ABCDE/IMG_0001.JPG"), "a");
  EXPECT_EQ(Plan({Picture(1)}).NewFiles(), 0U);
}

/// The system's calls; no file is made before a test lets them.
class HeldCalls : public SystemCalls {
 public:
  HeldCalls() : before_(FileCalls::Replace(*this)) {}
  ~HeldCalls() override { FileCalls::Replace(before_); }
  void Release() { open_.count_down(); }
  int Create(int folder, const std::string& name) override {
    open_.wait();
    return SystemCalls::Create(folder, name);
  }

 private:
  std::latch open_{1};
  FileCalls& before_;
};

TEST_F(WritersTest, WhatIsAbandonedBeforeItBeganIsNotStored) {
  std::vector<DcfObj> catalogue;
  for (int i = 1; i <= 200; ++i) catalogue.push_back(Picture(i));
  const SyncPlan plan = Plan(catalogue);
  HeldCalls calls;
  {
    Writers writers(folder_, manifest_, cuts_, [this](const WriteOutcome&) { ++stored_; });
    for (const SyncItem& item : plan.items) writers.Submit({&item, {'a'}, "", false});
    writers.Abandon();
    calls.Release();
  }
  EXPECT_LE(stored_, 64) << "what four threads had taken, 16 files each";
}

TEST_F(WritersTest, AFileThatCannotBeFlushedGetsNoNameAndTheOthersDo) {
  const SyncPlan plan = Plan({Picture(1), Picture(2), Picture(3)});
  RecordingCalls calls(path_);
  // Not one of the errors after which every other file would fail too.
  calls.FailAt(2, EACCES, "flush 100ABCDE/");
  Store(plan, "abc");
  EXPECT_TRUE(calls.HasFailed());
  EXPECT_EQ(stored_, 2);
  EXPECT_NE(errors_.find("Cannot flush a file in"), std::string::npos) << errors_;
  EXPECT_EQ(Plan({Picture(1), Picture(2), Picture(3)}).NewFiles(), 1U);
  EXPECT_THAT(calls.NamedUnflushed(), testing::IsEmpty());
}

TEST_F(WritersTest, AFullDiskIsAFailureAlsoAtTheLastFile) {
  const SyncPlan plan = Plan({Picture(1)});
  RecordingCalls calls(path_);
  calls.FailEach(1, 1 << 20, ENOSPC, "write ");
  EXPECT_THROW(Store(plan, "abc"), Failure);
  EXPECT_EQ(stored_, 0);
}

TEST_F(WritersTest, NothingIsRecordedOnceAFolderCouldNotBeFlushed) {
  const SyncPlan plan = Plan({Picture(1)});
  RecordingCalls calls(path_);
  calls.FailAt(1, EIO, "flush folder");
  EXPECT_THROW(Store(plan, "abc"), Failure);
  EXPECT_EQ(calls.Log().back(), "flush folder 100ABCDE");
  EXPECT_EQ(stored_, 0);
  EXPECT_EQ(Plan({Picture(1)}).NewFiles(), 1U);
}

TEST_F(WritersTest, AfterAFlushThatFailedTheNextOneIsNotBelieved) {
  const SyncPlan plan = Plan({Picture(1), Picture(2)});
  RecordingCalls calls(path_);
  calls.FailAt(1, EIO, "flush folder");
  {
    const auto writers = Make([this](const WriteOutcome&) { ++stored_; });
    writers->Submit({&plan.items[0], {'a'}, "", false});
    EXPECT_THROW(writers->Finish(), Failure);
    writers->Submit({&plan.items[1], {'a'}, "", false});
    writers->Finish();
  }
  EXPECT_EQ(stored_, 0);
  EXPECT_EQ(Plan({Picture(1), Picture(2)}).NewFiles(), 2U);
}

TEST_F(WritersTest, NothingMoreIsTakenOnceTheDiskIsFull) {
  const SyncPlan plan = Plan({Picture(1), Picture(2)});
  RecordingCalls calls(path_);
  calls.FailEach(1, 1 << 20, ENOSPC, "write ");
  const auto writers = Make([](const WriteOutcome&) {});
  writers->Submit({&plan.items[0], {'a'}, "", false});
  EXPECT_THROW(writers->Finish(), Failure);
  EXPECT_THROW(writers->Submit({&plan.items[1], {'a'}, "", false}), Failure);
}

TEST_F(WritersTest, WhatWasWrittenBeforeTheDiskWasFullIsKept) {
  const SyncPlan plan = Plan({Picture(1), Picture(2), Picture(3)});
  RecordingCalls calls(path_);
  calls.FailAt(3, ENOSPC, "write ");
  EXPECT_THROW(Store(plan, "abc"), Failure);
  EXPECT_EQ(Plan({Picture(1), Picture(2), Picture(3)}).NewFiles(), 1U);
}

/// The system's calls without memory for a new file.
class PoorCalls : public SystemCalls {
 public:
  PoorCalls() : before_(FileCalls::Replace(*this)) {}
  ~PoorCalls() override { FileCalls::Replace(before_); }
  int Create(int, const std::string&) override { throw std::bad_alloc(); }

 private:
  FileCalls& before_;
};

TEST_F(WritersTest, AnyOtherErrorEndsTheWritingInWords) {
  const SyncPlan plan = Plan({Picture(1)});
  const PoorCalls calls;
  try {
    Store(plan, "abc");
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_STREQ(failure.what(), "Storing files stopped: std::bad_alloc.");
  }
}

// The report writes to standard output, and any of the threads calls it.
TEST_F(WritersTest, AReportWithoutAReaderReachesWhoHandsOver) {
  const SyncPlan plan = Plan({Picture(1, std::string(40, 'f'))});
  const auto writers = Make([](const WriteOutcome&) { throw ReaderGone(); });
  writers->Submit({&plan.items[0], {'a'}, "", false});
  EXPECT_THROW(writers->Finish(), ReaderGone);
}

TEST_F(WritersTest, AReportThatThrowsAtTheEndEndsNoProcess) {
  const SyncPlan plan = Plan({Picture(1)});
  // The only file waits for its group until the writers end.
  auto writers = Make([](const WriteOutcome&) { throw std::bad_alloc(); });
  writers->Submit({&plan.items[0], {'a'}, "", false});
  writers.reset();
  EXPECT_EQ(Text("100ABCDE/IMG_0001.JPG"), "a");
}

/// Measures how much is on its way at most, whenever a file is made.
class MeasuringCalls : public SystemCalls {
 public:
  explicit MeasuringCalls(std::size_t size) : size_(size), before_(FileCalls::Replace(*this)) {}
  ~MeasuringCalls() override { FileCalls::Replace(before_); }
  int Create(int folder, const std::string& name) override {
    const std::size_t handedOver = submitted;  // before what is named: rather too little than too much
    const std::scoped_lock lock(mutex_);
    most = std::max(most, (handedOver - std::min(handedOver, named_)) * size_);
    return SystemCalls::Create(folder, name);
  }
  int Rename(int folder, const std::string& from, const std::string& to, bool replace) override {
    const std::scoped_lock lock(mutex_);
    ++named_;
    return SystemCalls::Rename(folder, from, to, replace);
  }

  std::atomic<std::size_t> submitted = 0;
  std::size_t most = 0;

 private:
  std::mutex mutex_;
  std::size_t size_;
  std::size_t named_ = 0;
  FileCalls& before_;
};

/// Notes on which processors a thread that stores may run.
class ProcessorCalls : public SystemCalls {
 public:
  ProcessorCalls() : before_(FileCalls::Replace(*this)) {}
  ~ProcessorCalls() override { FileCalls::Replace(before_); }
  int Create(int folder, const std::string& name) override {
    ofWriter = platform::Processors();
    return SystemCalls::Create(folder, name);
  }

  std::vector<int> ofWriter;

 private:
  FileCalls& before_;
};

// With a processor for each of the five threads, and on a Mac, the system chooses.
TEST_F(WritersTest, TheReaderHasAProcessorToItselfWhereTheyAreFew) {
  const std::vector<int> all = platform::Processors();
  const bool few = all.size() > 1 && all.size() < 5;
  const SyncPlan plan = Plan({Picture(1)});
  ProcessorCalls calls;
  auto writers = Make([](const WriteOutcome&) {});
  const std::vector<int> ofReader = platform::Processors();
  writers->Submit({plan.items.data(), {'a'}, "", false});
  writers->Finish();
  std::vector<int> either = ofReader;
  either.insert(either.end(), calls.ofWriter.begin(), calls.ofWriter.end());
  if (few) {
    EXPECT_EQ(ofReader.size(), 1U);
    EXPECT_THAT(either, testing::UnorderedElementsAreArray(all));
  } else {
    EXPECT_EQ(ofReader, all);
    EXPECT_EQ(calls.ofWriter, all);
  }
  writers.reset();
  EXPECT_EQ(platform::Processors(), all);
}

TEST_F(WritersTest, TheReaderWaitsWhileFourMegabytesAreOnTheirWay) {
  std::vector<DcfObj> catalogue;
  for (int i = 1; i <= 40; ++i) catalogue.push_back(Picture(i));
  const SyncPlan plan = Plan(catalogue);
  constexpr std::size_t kMegabyte = 1U << 20;
  MeasuringCalls calls(kMegabyte);
  const auto writers = Make([this](const WriteOutcome&) { ++stored_; });
  for (const SyncItem& item : plan.items) {
    writers->Submit({&item, std::vector<char>(kMegabyte, 'x'), "", false});
    ++calls.submitted;
  }
  writers->Finish();
  EXPECT_EQ(stored_, 40);
  EXPECT_LE(calls.most, 4 * kMegabyte);
}

}  // namespace
}  // namespace apps
