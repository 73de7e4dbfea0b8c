#include <optional>

#include "src/wifi/FileReader.h"
#include "src/wifi/FileWriter.h"
#include "src/wifi/testing/ReadPart.h"
#include "tests/stack/StackTest.h"

// Any part of a file through the whole stack: on a camera that honours the offset of a read, on one that ignores it, and
// with each fault at each command.

namespace tests::stack {
namespace {

using kelva::test::DistinctBlocks;
using kelva::test::ReadPart;
using vcam::FaultKind;

constexpr const char* kPath = R"(I:\DCIM\file)";
constexpr std::size_t kSize = 150'000;

class Pieces : public StackTest, public testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    StackTest::SetUp();
    storage_.Put("DCIM/file", content_);
    Replug();
  }

  void Replug() {
    camera_.reset();
    if (plugged_) Unplug();
    vcam::Options options = storage_.CameraOptions(kSerial);
    options.forwardOnly = GetParam();
    Door::Get().Plug(options);
    plugged_ = true;
  }

  const boost::shared_ptr<Camera>& Fresh() {
    camera_.reset();
    Opened();
    return camera_;
  }

  /// Jumps ahead, reads on to the end, jumps back, takes the file up again.
  static std::string ReadParts(const boost::shared_ptr<Camera>& camera) {
    kelva::FileReader reader(camera, kPath);
    std::string text = ReadPart(reader, 140'000, 100);
    text += ReadPart(reader, reader.Position(), 70'000);
    text += ReadPart(reader, 5, 10);
    reader.Select();
    return text + ReadPart(reader, 0, 70'000);
  }
  std::string Parts() const { return content_.substr(140'000) + content_.substr(5, 10) + content_.substr(0, 70'000); }

  void ArmAlone(FaultKind kind, std::uint64_t at) {
    Door::Get().Disarm(kSerial);
    Arm(kind, at);
  }

  /// What came, or nothing when it ended with an error of the library.
  std::optional<std::string> TryToRead() {
    try {
      return ReadParts(Fresh());
    } catch (const CameraError&) {
      return std::nullopt;
    }
  }

  const std::string content_ = DistinctBlocks(kSize);
};

TEST_P(Pieces, AnyPartIsRight) {
  const auto& camera = Fresh();
  EXPECT_TRUE(ReadParts(camera) == Parts());
  EXPECT_EQ(kelva::FileReader(camera, kPath).ReadsForwardOnly(), GetParam());
}

TEST_P(Pieces, WhatASourceGivesIsRead) {
  const auto& camera = Fresh();
  std::size_t given = 0;
  const auto source = [&](std::span<char> chunk) { given += content_.copy(chunk.data(), chunk.size(), given); };
  kelva::WriteFile(*camera, R"(I:\DCIM\copy)", kSize, source);
  EXPECT_EQ(given, kSize);
  kelva::FileReader reader(camera, R"(I:\DCIM\copy)");
  EXPECT_TRUE(ReadPart(reader, 0, kSize + 10) == content_);
}

// More commands than the reads take on either kind of camera.
constexpr std::uint64_t kCommands = 26;

TEST_P(Pieces, AFaultAtAnyCommandIsAnErrorOrChangesNothing) {
  for (const FaultKind kind :
       {FaultKind::kFail, FaultKind::kShort, FaultKind::kSurplusOne, FaultKind::kSurplusTwo, FaultKind::kStall}) {
    bool sawEnd = false;
    for (std::uint64_t at = 1; at <= kCommands; ++at) {
      ArmAlone(kind, at);
      const std::optional<std::string> read = TryToRead();
      EXPECT_TRUE(!read || *read == Parts()) << vcam::NameOf(kind) << " at " << at;
      sawEnd = read.has_value();
    }
    EXPECT_TRUE(sawEnd) << vcam::NameOf(kind) << ": the reads take more commands than are tried";
  }
}

// These put other bytes into the file, which one read cannot see.
TEST_P(Pieces, AFalseAnswerFromAnyCommandOnIsAnErrorOrOfTheRightSize) {
  for (const FaultKind kind : {FaultKind::kLieAboutSize, FaultKind::kWrongCount, FaultKind::kWrongOffset,
                               FaultKind::kUnterminatedName, FaultKind::kEndless, FaultKind::kChanging}) {
    for (std::uint64_t at = 1; at <= kCommands; ++at) {
      ArmAlone(kind, at);
      const std::optional<std::string> read = TryToRead();
      EXPECT_TRUE(!read || read->size() == Parts().size()) << vcam::NameOf(kind) << " at " << at;
    }
  }
}

TEST_P(Pieces, AnUnplugAfterAnyNumberOfBytesIsAnError) {
  for (const std::uint64_t after : {0U, 13U, 66'061U, 140'000U}) {
    Replug();
    Arm(FaultKind::kUnplugAtByte, after);
    EXPECT_FALSE(TryToRead()) << after;
    HasUnpluggedItself();
  }
}

INSTANTIATE_TEST_SUITE_P(BothKinds, Pieces, testing::Bool(),
                         [](const auto& kind) { return kind.param ? "ForwardOnly" : "AnyOrder"; });

}  // namespace
}  // namespace tests::stack
