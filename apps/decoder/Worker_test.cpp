#include "apps/decoder/Worker.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <string>
#include <thread>

#include "apps/decoder/Drawing.h"
#include "apps/decoder/testing/TinyJpeg.h"
#include "base/FileDescriptor.h"
#include "base/SendAll.h"
#include "platform/Sockets.h"

namespace apps {
namespace {

/// A worker in a thread, and the other end of its socket.
class WorkerTest : public ::testing::Test {
 protected:
  WorkerTest() {
    std::array<int, 2> ends{};
    EXPECT_EQ(platform::SocketPair(ends), 0);
    near_.Reset(ends[0]);
    far_.Reset(ends[1]);
    thread_ = std::thread([this] {
      ended_ = DrawAll(far_.Get());
      far_.Reset();
    });
    std::array<std::uint8_t, 4> ready{};
    EXPECT_TRUE(base::ReceiveAll(near_.Get(), ready));
    EXPECT_EQ(std::string(ready.begin(), ready.end()), "KTHR");
  }
  ~WorkerTest() override { End(); }
  bool End() {
    ::shutdown(near_.Get(), SHUT_WR);
    if (thread_.joinable()) thread_.join();
    return ended_;
  }
  void Send(std::uint64_t size, std::string_view bytes) const {
    base::Bytes head;
    base::Append(head, size);
    base::AppendText(head, bytes);
    base::SendAll(near_.Get(), head);
  }
  /// The kind of the next answer: 0 when a picture was drawn, 1 when not.
  int Kind() const {
    std::array<std::uint8_t, kAnswerHead> head{};
    EXPECT_TRUE(base::ReceiveAll(near_.Get(), head));
    base::Bytes rest(SizeAfter(head).value_or(0));
    EXPECT_TRUE(base::ReceiveAll(near_.Get(), rest));
    return head[4];
  }
  /// The width of the next answer's drawing, for which one of this side was asked.
  int Width(int longest) const {
    std::array<std::uint8_t, kAnswerHead> head{};
    EXPECT_TRUE(base::ReceiveAll(near_.Get(), head));
    base::Bytes rest(SizeAfter(head, longest).value_or(0));
    EXPECT_TRUE(base::ReceiveAll(near_.Get(), rest));
    return head[6] + 256 * head[7];
  }

  base::FileDescriptor near_;
  base::FileDescriptor far_;
  bool ended_ = false;
  std::thread thread_;
};

TEST_F(WorkerTest, DrawsOnePictureAfterTheOther) {
  const std::string picture = TinyJpeg::File(1, {90});
  for (const int kind : {0, 1, 0}) {
    const std::string file = kind == 0 ? picture : "no picture";
    Send(file.size(), file);
    EXPECT_EQ(Kind(), kind);
  }
  EXPECT_TRUE(End());
}

TEST_F(WorkerTest, SaysTheTimeOfAPictureWithoutItsPixels) {
  const std::string start = "\xFF\xD8" + TinyJpeg::ExifPart(1, "2026:03:14 15:09:26");
  for (const std::string& file : {start, std::string("no picture"), start}) {
    Send(kTimeOnly | file.size(), file);
    std::array<std::uint8_t, 19> answer{};
    EXPECT_TRUE(base::ReceiveAll(near_.Get(), answer));
    EXPECT_EQ(std::string(answer.begin(), answer.end()), file == start ? "2026-03-14 15:09:26" : std::string(19, '\0'));
  }
  EXPECT_TRUE(End());
}

TEST_F(WorkerTest, EndsAtASizeBeyondItsBoundsAlsoForATime) {
  Send(kTimeOnly | (kLargestPicture + 1), "");
  EXPECT_FALSE(End());
}

TEST_F(WorkerTest, DrawsAPictureLargeWhenAsked) {
  const std::string picture = TinyJpeg::File(60, std::vector<int>(60, 90));  // 480 pixels
  Send(picture.size(), picture);
  EXPECT_EQ(Width(kThumbnailSide), 400);
  Send(kShownLarge | picture.size(), picture);
  EXPECT_EQ(Width(kLargeSide), 480);
  EXPECT_TRUE(End());
}

TEST_F(WorkerTest, EndsWhenAFileDoesNotComeWhole) {
  Send(100, "half");
  EXPECT_FALSE(End());
}

TEST_F(WorkerTest, EndsAtASizeBeyondItsBounds) {
  Send(kLargestPicture + 1, "");
  EXPECT_FALSE(End());
}

}  // namespace
}  // namespace apps
