#include "apps/mount/Reading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "src/wifi/testing/FileCamera.h"

namespace apps {
namespace {

using testing::ElementsAre;
using wifi_testing::FileCamera;

constexpr std::size_t kPiece = Pieces::kSize;

class ReadingTest : public ::testing::Test {
 protected:
  static std::string Content() {
    std::string content(5 * kPiece + 10, '\0');
    unsigned state = 1;
    for (char& byte : content) byte = static_cast<char>((state = state * 1'664'525 + 1'013'904'223) >> 24);
    return content;
  }
  std::string Piece(std::uint64_t index) {
    return std::string(reading_.Read(7, "I:\\A", camera_->file.size(), index)->Text());
  }
  std::string Expected(std::uint64_t index) const { return camera_->file.substr(index * kPiece, kPiece); }

  const boost::shared_ptr<FileCamera> camera_{new FileCamera(Content())};
  int told_ = 0;
  Reading reading_{camera_, [this] { ++told_; }};
};

TEST_F(ReadingTest, AFileIsSelectedOnceAndAPieceIsOneCommand) {
  EXPECT_EQ(Piece(0), Expected(0));
  EXPECT_THAT(camera_->TakeSent(), ElementsAre("select", "size", "read 65536 at 0"));
  EXPECT_EQ(Piece(1), Expected(1));
  EXPECT_THAT(camera_->TakeSent(), ElementsAre("read 65536 at 65536"));
  EXPECT_EQ(Piece(3), Expected(3));  // after the proof that the camera honours offsets
  camera_->TakeSent();
  reading_.Forget();
  EXPECT_EQ(reading_.Selected(), 0U);
  EXPECT_EQ(Piece(2), Expected(2));
  EXPECT_THAT(camera_->TakeSent(), ElementsAre("select", "size", "read 65536 at 131072"));
  EXPECT_EQ(Piece(5), Expected(5));
  EXPECT_THAT(camera_->TakeSent(), ElementsAre("read 12 at 327680"));
  EXPECT_EQ(reading_.Selected(), 7U);
  EXPECT_EQ(told_, 0);
}

TEST_F(ReadingTest, AFullLastPieceIsOneCommandToo) {
  camera_->file.resize(4 * kPiece);
  Piece(2);  // with the proof
  reading_.Forget();
  camera_->TakeSent();
  EXPECT_EQ(Piece(3), Expected(3));
  EXPECT_THAT(camera_->TakeSent(), ElementsAre("select", "size", "read 65536 at 196608"));
  EXPECT_EQ(Piece(1), Expected(1));
}

TEST_F(ReadingTest, ALastPieceThatEndsEarlyIsAnError) {
  camera_->file.resize(4 * kPiece);
  Piece(2);
  camera_->announced = camera_->file.size();
  camera_->file.resize(4 * kPiece - 1);
  EXPECT_THROW(reading_.Read(7, "I:\\A", 4 * kPiece, 3), std::runtime_error);
  EXPECT_EQ(reading_.Selected(), 0U);
}

TEST_F(ReadingTest, ACameraThatSendsForwardOnlyIsReadForwardOnce) {
  camera_->forwardOnly = true;
  EXPECT_EQ(Piece(3), Expected(3));
  EXPECT_EQ(told_, 1);
  camera_->TakeSent();
  for (const std::uint64_t index : {0U, 2U, 1U}) EXPECT_EQ(Piece(index), Expected(index));
  EXPECT_THAT(camera_->TakeSent(), ElementsAre());
  EXPECT_EQ(Piece(5), Expected(5));
  EXPECT_EQ(told_, 1);
}

TEST_F(ReadingTest, AFileOfAnotherSizeIsNotRead) {
  camera_->announced = 3;
  EXPECT_THROW(Piece(0), std::runtime_error);
  EXPECT_EQ(reading_.Selected(), 0U);
}

TEST_F(ReadingTest, AfterAnErrorTheFileIsSelectedAnew) {
  camera_->throwsAt = 2;
  EXPECT_THROW(Piece(0), CameraTransferError);
  camera_->throwsAt = -1;
  camera_->TakeSent();
  EXPECT_EQ(Piece(0), Expected(0));
  EXPECT_THAT(camera_->TakeSent(), ElementsAre("select", "size", "read 65536 at 0"));
}

TEST_F(ReadingTest, ADroppedFileIsReadFromTheCameraAgain) {
  camera_->forwardOnly = true;
  Piece(3);
  reading_.Drop(7);
  camera_->file[3 * kPiece] ^= 1;
  EXPECT_EQ(Piece(3), Expected(3));
}

}  // namespace
}  // namespace apps
