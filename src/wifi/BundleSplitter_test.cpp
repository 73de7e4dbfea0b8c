#include "BundleSplitter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "BundleTables.h"
#include "testing/Bytes.h"

namespace {

using namespace wifi_testing;

// Two entries of 5 and 3 bytes, an empty one between them.
const std::string kBundle = Bytes({5, 0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0}) + "Aaaaa" + "Ccc";
const std::vector<std::string> kKeys = {"a", "b", "c"};

kelva::BundleSplitter Splitter() {
  return kelva::BundleSplitter([](std::span<const char> head) { return kelva::DecodeBatchTable(kKeys, head); });
}

std::vector<std::string> Split(const std::string& bundle, std::size_t chunk) {
  kelva::BundleSplitter splitter = Splitter();
  for (std::size_t at = 0; at < bundle.size(); at += chunk) {
    const std::string part = bundle.substr(at, chunk);
    splitter.Append(part);
  }
  EXPECT_EQ(splitter.Received(), bundle.size());
  std::vector<std::string> texts;
  for (const _Sha1obj& file : splitter.TakeFiles()) texts.push_back(file.name + ":" + ToString(file.data));
  return texts;
}

TEST(BundleSplitter, GivesTheSameFilesHoweverTheBundleIsCut) {
  for (std::size_t chunk = 1; chunk <= kBundle.size(); ++chunk) {
    EXPECT_EQ(Split(kBundle, chunk), (std::vector<std::string>{"a:Aaaaa", "c:Ccc"})) << chunk;
  }
}

TEST(BundleSplitter, IgnoresBytesBehindTheLastBody) {
  for (const std::size_t chunk : {std::size_t{1}, std::size_t{7}, std::size_t{100}}) {
    EXPECT_EQ(Split(kBundle + "surplus", chunk), (std::vector<std::string>{"a:Aaaaa", "c:Ccc"}));
  }
}

TEST(BundleSplitter, GivesNothingForAShortBundle) {
  for (std::size_t length = 0; length < kBundle.size(); ++length) {
    EXPECT_TRUE(Split(kBundle.substr(0, length), 4).empty()) << length;
  }
}

TEST(BundleSplitter, KnowsItsTableOnceItIsWhole) {
  kelva::BundleSplitter splitter = Splitter();
  splitter.Append(std::span(kBundle).first(11));
  EXPECT_FALSE(splitter.Table());
  splitter.Append(std::span(kBundle).subspan(11, 1));
  ASSERT_TRUE(splitter.Table());
  EXPECT_EQ(splitter.Table()->bodyStart, 12u);
}

// The bodies of the crash logs begin four bytes before the end of their table, wherever the cut falls.
TEST(BundleSplitter, TakesABodyThatBeginsInsideTheTable) {
  const std::string bundle = Bytes({1, 0, 0, 0, 6, 0, 0, 0}) + std::string(28, 'n') + "body!!";
  for (std::size_t chunk = 1; chunk <= bundle.size(); ++chunk) {
    kelva::BundleSplitter splitter(kelva::DecodeCrashLogTable);
    for (std::size_t at = 0; at < bundle.size(); at += chunk) {
      const std::string part = bundle.substr(at, chunk);
      splitter.Append(part);
    }
    const std::vector<_Sha1obj> files = splitter.TakeFiles();
    ASSERT_EQ(files.size(), 1u) << chunk;
    EXPECT_EQ(ToString(files[0].data), "body!!");
    EXPECT_EQ(files[0].name, std::string(28, 'n') + "body");
  }
}

TEST(BundleSplitter, OfATableWithoutEntriesIsEmpty) {
  kelva::BundleSplitter splitter(kelva::DecodeCrashLogTable);
  splitter.Append(std::string("\0\0\0\0rest", 8));
  EXPECT_TRUE(splitter.Table());
  EXPECT_TRUE(splitter.TakeFiles().empty());
}

}  // namespace
