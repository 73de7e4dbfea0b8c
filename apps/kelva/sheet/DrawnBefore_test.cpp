#include "apps/kelva/sheet/DrawnBefore.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "apps/files/testing/RecordingCalls.h"
#include "base/testing/ScratchFolder.h"

namespace apps {
namespace {

const std::string kFirst(40, 'a');
const std::string kSecond(40, 'b');

Thumbnail Drawn(const std::string& more, const std::string& time = "") {
  return {4, 3, "\xFF\xD8" + more, time.empty() ? std::nullopt : std::optional(time), ""};
}

class DrawnBeforeTest : public testing::Test {
 protected:
  void KeepBoth() const {
    DrawnBefore drawn(path_, "K1");
    drawn.Keep(kFirst, Drawn("one", "2026-03-14 15:09:26"));
    drawn.Keep(kSecond, Drawn("two"));
    drawn.Finish();
  }
  std::filesystem::path File() const { return *std::filesystem::directory_iterator(path_); }

  const base::ScratchFolder scratch_;
  const std::string path_ = scratch_.Path() / "deep/cache";
};

TEST_F(DrawnBeforeTest, WhatWasKeptIsFound) {
  KeepBoth();
  const DrawnBefore drawn(path_, "K1");
  const auto first = drawn.Find(kFirst);
  ASSERT_TRUE(first);
  EXPECT_EQ(first->width, 4);
  EXPECT_EQ(first->height, 3);
  EXPECT_EQ(first->jpeg, "\xFF\xD8one");
  EXPECT_EQ(first->time, "2026-03-14 15:09:26");
  EXPECT_EQ(drawn.Find(kSecond)->time, std::nullopt);
  EXPECT_FALSE(drawn.Find(std::string(40, 'c')));
  EXPECT_FALSE(DrawnBefore(path_, "K2").Find(kFirst)) << "another camera";
}

TEST_F(DrawnBeforeTest, WhatIsNotKeptAgainHasGone) {
  KeepBoth();
  {
    DrawnBefore drawn(path_, "K1");
    drawn.Keep(kSecond, *drawn.Find(kSecond));
    drawn.Finish();
  }
  const DrawnBefore drawn(path_, "K1");
  EXPECT_FALSE(drawn.Find(kFirst));
  EXPECT_TRUE(drawn.Find(kSecond));
}

TEST_F(DrawnBeforeTest, ASheetThatWasNotFinishedChangesNothing) {
  KeepBoth();
  { DrawnBefore(path_, "K1").Keep(kFirst, Drawn("new")); }
  EXPECT_EQ(DrawnBefore(path_, "K1").Find(kFirst)->jpeg, "\xFF\xD8one");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(path_), {}), 1);
}

TEST_F(DrawnBeforeTest, OnlyTheUserReadsIt) {
  KeepBoth();
  EXPECT_EQ(static_cast<unsigned>(std::filesystem::status(File()).permissions()) & 077U, 0U);
}

TEST_F(DrawnBeforeTest, EveryDamagedByteAndEveryCutIsNoticed) {
  KeepBoth();
  std::ifstream file(File());
  const std::string whole{std::istreambuf_iterator<char>(file), {}};
  const std::filesystem::path path = File();
  for (std::size_t at = 0; at < whole.size(); ++at) {
    std::string damaged = whole;
    damaged[at] = static_cast<char>(damaged[at] ^ 0x55);
    for (const std::string& bytes : {damaged, whole.substr(0, at)}) {
      std::ofstream(path, std::ios::trunc) << bytes;
      const DrawnBefore drawn(path_, "K1");
      for (const std::string& key : {kFirst, kSecond}) {
        const auto found = drawn.Find(key);
        EXPECT_TRUE(!found || found->jpeg == (key == kFirst ? "\xFF\xD8one" : "\xFF\xD8two")) << at;
      }
    }
  }
}

TEST_F(DrawnBeforeTest, WithoutAFolderOrWithAFullDiskNothingIsKeptAndNothingFails) {
  for (const std::string& folder : {std::string(), std::string("/dev/null/kelva")}) {
    DrawnBefore drawn(folder, "K1");
    drawn.Keep(kFirst, Drawn("one"));
    drawn.Finish();
    EXPECT_FALSE(drawn.Find(kFirst));
  }
  KeepBoth();
  for (int nth = 1; nth < 10; ++nth) {
    RecordingCalls calls(scratch_.Path());
    calls.FailAt(nth, ENOSPC);
    KeepBoth();
    EXPECT_TRUE(DrawnBefore(path_, "K1").Find(kFirst)) << "the old ones or the new ones, after call " << nth;
  }
}

TEST_F(DrawnBeforeTest, TheFolderIsTheUsersCache) {
  const auto set = [](const char* name, const char* value) { value ? ::setenv(name, value, 1) : ::unsetenv(name); };
  const std::string cache = std::getenv("XDG_CACHE_HOME") ? std::getenv("XDG_CACHE_HOME") : "";
  const std::string home = std::getenv("HOME") ? std::getenv("HOME") : "";
  set("XDG_CACHE_HOME", "/here");
  EXPECT_EQ(DrawnBefore::Folder(), "/here/kelva");
  set("XDG_CACHE_HOME", "not/absolute");
  set("HOME", "/mine");
  EXPECT_EQ(DrawnBefore::Folder(), "/mine/.cache/kelva");
  set("HOME", nullptr);
  EXPECT_EQ(DrawnBefore::Folder(), "");
  set("HOME", home.empty() ? nullptr : home.c_str());
  set("XDG_CACHE_HOME", cache.empty() ? nullptr : cache.c_str());
}

}  // namespace
}  // namespace apps
