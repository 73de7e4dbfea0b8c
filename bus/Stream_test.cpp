#include "bus/Stream.h"

#include <gmock/gmock.h>
#include <poll.h>

#include <array>

#include "platform/Sockets.h"

namespace bus {
namespace {

class StreamTest : public testing::Test {
 protected:
  StreamTest() {
    std::array<int, 2> ends{-1, -1};
    EXPECT_EQ(platform::SocketPair(ends), 0);
    stream_.emplace(base::FileDescriptor(ends[0]));
    far_ = base::FileDescriptor(ends[1]);
  }

  std::optional<Stream> stream_;
  base::FileDescriptor far_;
};

TEST_F(StreamTest, SendsWhatIsQueued) {
  EXPECT_EQ(stream_->Wants(), POLLIN);
  stream_->Queue({'a', 'b'});
  stream_->Queue({'c'});
  EXPECT_EQ(stream_->Wants(), POLLIN | POLLOUT);
  EXPECT_TRUE(stream_->WriteSome());
  EXPECT_EQ(stream_->Wants(), POLLIN);
  char text[4] = {};
  EXPECT_EQ(::recv(far_.Get(), text, sizeof text, 0), 3);
  EXPECT_STREQ(text, "abc");
}

TEST_F(StreamTest, StopsReadingFromAPeerThatDoesNotRead) {
  stream_->Queue(base::Bytes(3 << 20));
  EXPECT_TRUE(stream_->WriteSome());
  EXPECT_EQ(stream_->Wants(), POLLOUT);
}

TEST_F(StreamTest, GivesUpAPeerThatLetsTooMuchWait) {
  for (int i = 0; i < 5; ++i) stream_->Queue(base::Bytes(kMaxFrame));
  EXPECT_FALSE(stream_->WriteSome());
}

TEST_F(StreamTest, ReadsFrames) {
  const base::Bytes frame = EncodeFrame(Kind::kOk, 3, {});
  ASSERT_EQ(::send(far_.Get(), frame.data(), frame.size(), 0), static_cast<ssize_t>(frame.size()));
  EXPECT_TRUE(stream_->ReadSome());
  EXPECT_EQ(stream_->Next()->tag, 3U);
  EXPECT_TRUE(stream_->ReadSome()) << "nothing there is no end";
}

TEST_F(StreamTest, SeesThatThePeerHasGone) {
  far_.Reset();
  EXPECT_FALSE(stream_->ReadSome());
  stream_->Queue({'x'});
  EXPECT_FALSE(stream_->WriteSome());
}

}  // namespace
}  // namespace bus
