#include "apps/import/Receive.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <string_view>
#include <thread>

#include "apps/commandline/Failure.h"
#include "apps/files/testing/RecordingCalls.h"
#include "apps/import/testing/SyncTest.h"

namespace apps {
namespace {

using What = FileStream::What;

class ReceiveTest : public SyncFolderTest {
 protected:
  void Put(std::string_view text, What what = What::kWrite) {
    const std::span<char> room = stream_.Room();
    std::copy(text.begin(), text.end(), room.begin());
    stream_.Put(what, text.size());
  }

  /// A file of three bytes.
  std::optional<Received> Run(std::optional<Part> part = std::nullopt) {
    return Receive(stream_, {kKey, 3, kPath, folder_, std::move(part)}, manifest_);
  }

  const ManifestKey kKey{"K1", "01", 1, "print"};
  const LocalPath kPath{{}, "A.JPG"};
  FileStream stream_;
};

TEST_F(ReceiveTest, AWholeFileIsOnDiskUnderATemporaryName) {
  Put("ab");
  Put("c");
  stream_.End(What::kStore, true);
  const auto received = Run();
  ASSERT_TRUE(received.has_value());
  EXPECT_EQ(received->sha1, "a9993e364706816aba3e25717850c26c9cd0d89d");
  EXPECT_EQ(stream_.Sha1(), received->sha1);
  EXPECT_TRUE(received->verified);
  EXPECT_TRUE(received->file->TakeName("abc"));
  EXPECT_EQ(Text("abc"), "abc");
}

TEST_F(ReceiveTest, WhatComesAgainIsComparedWithWhatIsOnDisk) {
  for (const bool same : {true, false}) {
    Put("abc");
    Put("a", What::kCompare);
    Put(same ? "bc" : "bd", What::kCompare);
    stream_.End(What::kDrop);
    EXPECT_FALSE(Run().has_value());
    EXPECT_EQ(stream_.IsEqual(), same);
  }
}

TEST_F(ReceiveTest, OneDifferentPieceIsEnough) {
  Put("abc");
  Put("x", What::kCompare);
  Put("bc", What::kCompare);
  stream_.End(What::kDrop);
  Run();
  EXPECT_EQ(stream_.IsEqual(), false);
}

TEST_F(ReceiveTest, AFileThatItsReaderDropsLeavesNothing) {
  Put("ab");
  stream_.End(What::kDrop);
  EXPECT_FALSE(Run().has_value());
  EXPECT_EQ(RemoveLeftovers(folder_), 0);
}

// A camera that hangs: what ends the command then does not wait for what comes.
TEST_F(ReceiveTest, APartIsKeptOnceNothingMoreComes) {
  constexpr std::size_t kHalf = FileStream::kPiece;
  std::thread writer([this] { Receive(stream_, {kKey, 2 * kHalf, kPath, folder_, std::nullopt}, manifest_); });
  Put(std::string(kHalf, 'a'));
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (manifest_.Cuts().empty() && std::chrono::steady_clock::now() < end) std::this_thread::yield();
  EXPECT_EQ(manifest_.Cuts().size(), 1U);
  EXPECT_EQ(RemoveLeftovers(folder_), 0);
  stream_.End(What::kDrop);
  writer.join();
  EXPECT_TRUE(manifest_.Cuts().empty()) << "what is of no use is not kept";
}

TEST_F(ReceiveTest, ADiskThatTakesNoMoreIsAFailure) {
  RecordingCalls calls(path_);
  calls.FailAt(2, ENOSPC, "write ");
  Put("ab");
  Put("c");
  stream_.End(What::kStore);
  EXPECT_THROW(Run(), Failure);
}

}  // namespace
}  // namespace apps
