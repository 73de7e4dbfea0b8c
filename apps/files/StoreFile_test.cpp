#include "apps/files/StoreFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

#include "apps/commandline/Failure.h"
#include "apps/files/Sha1.h"
#include "apps/files/testing/RecordingCalls.h"
#include "base/testing/ScratchFolder.h"

namespace apps {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

class StoreFileTest : public testing::Test {
 protected:
  void Replace(const std::string& name, const std::string& text) const {
    NewFile file(*folder_);
    file.Write(text);
    NameReplacing(*folder_, file, name);
  }
  std::string Text(const std::string& name) const {
    std::ifstream file(path_ / name);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  Stored Store(const std::string& name, const std::string& text) const {
    return StoreBeside(*folder_, name, text, Sha1(text));
  }

  const base::ScratchFolder scratch_;
  const fs::path path_ = scratch_.Path();
  std::optional<TargetFolder> folder_ = TargetFolder::Open(path_);
};

TEST_F(StoreFileTest, AFreeNameIsTaken) {
  const Stored stored = Store("A.JPG", "one");
  EXPECT_EQ(stored.name, "A.JPG");
  EXPECT_FALSE(stored.wasThere);
  EXPECT_EQ(Text("A.JPG"), "one");
}

TEST_F(StoreFileTest, AnotherFileOfTheNameStaysAndTheNewOneIsNumbered) {
  Store("A.JPG", "one");
  EXPECT_EQ(Store("A.JPG", "two").name, "A-2.JPG");
  EXPECT_EQ(Store("A.JPG", "three").name, "A-3.JPG");
  EXPECT_EQ(Text("A.JPG"), "one");
  EXPECT_EQ(Text("A-3.JPG"), "three");
}

TEST_F(StoreFileTest, TheSameBytesAreNotStoredTwice) {
  Store("A.JPG", "one");
  Store("A.JPG", "two");
  const Stored stored = Store("A.JPG", "two");
  EXPECT_EQ(stored.name, "A-2.JPG");
  EXPECT_TRUE(stored.wasThere);
}

TEST_F(StoreFileTest, AFileGetsItsTimeAndOneThatWasThereKeepsIts) {
  for (const std::time_t time : {1'000'000'000, 1'200'000'000}) {
    BesideFile file(*folder_, "A.JPG", std::string("one"), Sha1("one"));
    file.SetTime(time);
    file.Flush();
    file.TakeName();
    struct stat status {};
    EXPECT_EQ(::stat((path_ / "A.JPG").c_str(), &status), 0);
    EXPECT_EQ(status.st_mtime, 1'000'000'000);
  }
}

TEST_F(StoreFileTest, AFileBesideOthersIsFlushedBeforeItHasItsName) {
  const std::string text = "one";
  RecordingCalls calls(path_);
  BesideFile file(*folder_, "A.JPG", text, Sha1(text));
  calls.FailAt(1, EIO, "flush");
  EXPECT_THROW(file.Flush(), Failure);
}

TEST_F(StoreFileTest, AFileBesideOthersIsOnItsWayToTheDiskBeforeItIsWaitedFor) {
  const std::string text = "one";
  const RecordingCalls calls(path_);
  const BesideFile file(*folder_, "A.JPG", text, Sha1(text));
  EXPECT_EQ(calls.Begun(), 3U);
}

TEST_F(StoreFileTest, NothingBearsTheNameBeforeTheLastStep) {
  const std::string one = "one";
  const std::string two = "two";
  BesideFile first(*folder_, "A.JPG", one, Sha1(one));
  BesideFile second(*folder_, "A.JPG", two, Sha1(two));
  first.Flush();
  second.Flush();
  EXPECT_FALSE(fs::exists(path_ / "A.JPG"));
  EXPECT_EQ(second.TakeName().name, "A.JPG");
  EXPECT_EQ(first.TakeName().name, "A-2.JPG");
  EXPECT_EQ(Text("A.JPG"), "two");
  EXPECT_EQ(Text("A-2.JPG"), "one");
}

TEST_F(StoreFileTest, ALinkIsNotLookedThrough) {
  std::ofstream(path_ / "secret") << "one";
  fs::create_symlink("secret", path_ / "A.JPG");
  EXPECT_EQ(Store("A.JPG", "one").name, "A-2.JPG");
  EXPECT_TRUE(fs::is_symlink(path_ / "A.JPG"));
}

TEST_F(StoreFileTest, NothingButFilesIsLookedInto) {
  ASSERT_EQ(::mkfifo((path_ / "A.JPG").c_str(), 0600), 0);  // opening it would wait for a writer
  fs::create_directory(path_ / "A-2.JPG");
  EXPECT_EQ(Store("A.JPG", "").name, "A-3.JPG");
}

TEST_F(StoreFileTest, NumbersBeforeTheFirstAreLookedAtAsFarAsAskedFor) {
  const std::string text = "one";
  Store("A.JPG", "two");
  ASSERT_EQ(Store("A.JPG", text).name, "A-2.JPG");
  const auto name = [&](int before) {
    BesideFile file(*folder_, "A.JPG", text, Sha1(text), 3, before);
    file.Flush();
    return file.TakeName().name;
  };
  EXPECT_EQ(name(1), "A-2.JPG");
  EXPECT_EQ(name(0), "A-3.JPG");
}

TEST_F(StoreFileTest, AFileOfTheSameSizeIsAnotherFile) {
  Store("A.JPG", "one");
  EXPECT_EQ(Store("A.JPG", "eno").name, "A-2.JPG");
}

TEST_F(StoreFileTest, StoringNewRefusesATakenNameAndReplacingDoesNot) {
  StoreNew(*folder_, "A", std::string("one"));
  try {
    StoreNew(*folder_, "A", std::string("two"));
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.what(), "There is a " + (path_ / "A").string() +
                                  " already, and it was kept; --force replaces it, --output chooses another name.");
  }
  EXPECT_EQ(Text("A"), "one");
  Replace("A", "two");
  EXPECT_EQ(Text("A"), "two");
}

TEST_F(StoreFileTest, TheBytesAreOnDiskBeforeTheNameAndTheNameBeforeTheEnd) {
  const RecordingCalls calls(path_);
  StoreNew(*folder_, "A", std::string("one"));
  EXPECT_THAT(calls.Log(), ElementsAre("create *.part", "write *.part", "flush *.part", "rename A", "flush folder ."));
}

TEST_F(StoreFileTest, StoringBesideOthersKeepsTheOrderToo) {
  const RecordingCalls calls(path_);
  Store("A", "one");
  EXPECT_THAT(calls.Log(), ElementsAre("create *.part", "write *.part", "flush *.part", "rename A"));
}

TEST_F(StoreFileTest, ReplacingKeepsTheSameOrder) {
  const RecordingCalls calls(path_);
  Replace("A", "one");
  EXPECT_THAT(calls.Log(), ElementsAre("create *.part", "write *.part", "flush *.part", "replace A", "flush folder ."));
}

TEST_F(StoreFileTest, AFileThatIsThereIsFlushedBeforeItCountsAsStored) {
  Store("A.JPG", "one");
  const RecordingCalls calls(path_);
  EXPECT_TRUE(Store("A.JPG", "one").wasThere);
  EXPECT_THAT(calls.Log(), ElementsAre("flush A.JPG"));
}

TEST_F(StoreFileTest, AFileThatIsThereAndCannotBeFlushedDoesNotCount) {
  Store("A.JPG", "one");
  RecordingCalls calls(path_);
  calls.FailAt(1, EIO);
  EXPECT_EQ(Store("A.JPG", "one").name, "A-2.JPG");
}

TEST_F(StoreFileTest, NumbersHaveAnEndAndTheLastIsUsedToo) {
  const std::string text = "one";
  for (const char* name : {"A.JPG", "A-2.JPG", "A-3.JPG"}) std::ofstream(path_ / name) << "other";
  const auto store = [&](int most) {
    BesideFile file(*folder_, "A.JPG", text, Sha1(text), 1, BesideFile::kMostBefore, most);
    file.Flush();
    return file.TakeName();
  };
  EXPECT_THROW(store(2), Failure);
  EXPECT_EQ(store(3).name, "A-4.JPG");
  EXPECT_TRUE(store(3).wasThere);
  EXPECT_THROW(store(2), Failure);
}

TEST(NumberedTest, TheNumberStandsBeforeTheExtension) {
  EXPECT_EQ(Numbered("A.JPG", 1), "A.JPG");
  EXPECT_EQ(Numbered("A.JPG", 2), "A-2.JPG");
  EXPECT_EQ(Numbered("A", 2), "A-2");
  EXPECT_EQ(Numbered("%2Ea.b", 3), "%2Ea-3.b");
  EXPECT_EQ(Numbered("a.b", 2), "a-2.b");
  EXPECT_EQ(Numbered(".hidden", 2), ".hidden-2");
}

}  // namespace
}  // namespace apps
