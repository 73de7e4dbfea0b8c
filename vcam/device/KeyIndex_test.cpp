#include "vcam/device/KeyIndex.h"

#include <gmock/gmock.h>

#include "vcam/camera/testing/TestSupport.h"

namespace vcam {
namespace {

using test::ScratchStorage;

constexpr const char* kAbcKey = "a9993e364706816aba3e25717850c26c9cd0d89d";

TEST(KeyIndex, FindsFilesByTheirBytes) {
  const ScratchStorage scratch;
  scratch.Put("DCIM/100ABCDE/IMG_0001.JPG", "abc");
  scratch.Put("DCIM/deep/er/copy", "abc");
  scratch.Put("elsewhere", "abc");
  KeyIndex keys;
  keys.Refresh(Storage(scratch.Path()));
  const auto found = keys.Find(kAbcKey);
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].path, "DCIM/100ABCDE/IMG_0001.JPG");
  EXPECT_EQ(found[0].size, 3U);
  EXPECT_EQ(found[1].path, "DCIM/deep/er/copy");
  EXPECT_TRUE(keys.Find("da39a3ee5e6b4b0d3255bfef95601890afd80709").empty());
}

TEST(KeyIndex, SeesAChangeOfTheSameLengthAtOnce) {
  const ScratchStorage scratch;
  const Storage storage(scratch.Path());
  KeyIndex keys;
  for (const char* content : {"xyz", "abd", "abc"}) {
    scratch.Put("DCIM/a", content);
    keys.Refresh(storage);
  }
  EXPECT_EQ(keys.Find(kAbcKey).size(), 1U);
}

TEST(KeyIndex, ForgetsDeletedFiles) {
  const ScratchStorage scratch;
  const Storage storage(scratch.Path());
  scratch.Put("DCIM/a", "abc");
  KeyIndex keys;
  keys.Refresh(storage);
  storage.Remove("DCIM/a");
  keys.Refresh(storage);
  EXPECT_TRUE(keys.Find(kAbcKey).empty());
}

TEST(KeyIndex, GivesTheKeyOfOneFile) {
  const ScratchStorage scratch;
  scratch.Put("DCIM/a", "abc");
  KeyIndex keys;
  EXPECT_EQ(keys.KeyOf(Storage(scratch.Path()), "DCIM/a", {}), kAbcKey);
  EXPECT_EQ(keys.KeyOf(Storage(scratch.Path()), "DCIM/missing", {}), "");
}

TEST(KeyIndex, TellsKeysFromOtherText) {
  EXPECT_TRUE(IsKey(kAbcKey));
  EXPECT_FALSE(IsKey("A9993E364706816ABA3E25717850C26C9CD0D89D"));
  EXPECT_FALSE(IsKey("a9993e"));
  EXPECT_FALSE(IsKey(std::string(kAbcKey) + "0"));
}

}  // namespace
}  // namespace vcam
