#include "bus/Listener.h"

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>
#include <future>
#include <latch>
#include <thread>

#include "vcam/camera/testing/TestSupport.h"

namespace bus {
namespace {

class ListenerTest : public testing::Test {
 protected:
  std::string FailureAt(const std::string& path) {
    try {
      const Listener listener(path);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "no failure";
  }

  vcam::test::ScratchStorage scratch_;
  std::string path_ = (scratch_.Path() / "bus").string();
};

TEST_F(ListenerTest, AcceptsConnectionsOfItsOwnerOnly) {
  const Listener listener(path_);
  EXPECT_FALSE(listener.Accept()) << "nobody there yet";
  const base::FileDescriptor near = ConnectTo(path_);
  const base::FileDescriptor far = listener.Accept();
  EXPECT_TRUE(near);
  EXPECT_TRUE(far);
  EXPECT_EQ(PeerProcess(far.Get()), ::getpid());
  struct stat status {};
  ASSERT_EQ(::lstat(path_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700U);
}

TEST_F(ListenerTest, RemovesItsSocket) {
  { const Listener listener(path_); }
  EXPECT_FALSE(scratch_.Has("bus"));
}

TEST_F(ListenerTest, TakesThePlaceOfASocketThatNobodyServes) {
  {
    Listener first(path_);
    std::filesystem::rename(path_, path_ + ".kept");
  }
  std::filesystem::rename(path_ + ".kept", path_);
  const Listener second(path_);
  EXPECT_TRUE(ConnectTo(path_));
}

TEST_F(ListenerTest, DoesNotRemoveASocketThatIsNoLongerItsOwn) {
  {
    const Listener first(path_);
    std::filesystem::remove(path_);
    scratch_.Put("bus", "another's");
  }
  EXPECT_TRUE(scratch_.Has("bus"));
}

TEST_F(ListenerTest, RefusesAPathThatIsServed) {
  const Listener listener(path_);
  EXPECT_THAT(FailureAt(path_), testing::HasSubstr("another process serves it already"));
}

TEST_F(ListenerTest, RefusesWhatIsNoSocket) {
  scratch_.Put("bus", "a file");
  EXPECT_THAT(FailureAt(path_), testing::HasSubstr("a file of that name exists"));
  EXPECT_EQ(scratch_.Get("bus"), "a file");
}

TEST_F(ListenerTest, RefusesPathsThatCannotBe) {
  EXPECT_THAT(FailureAt(""), testing::HasSubstr("107 bytes"));
  EXPECT_THAT(FailureAt(scratch_.Path().string() + "/" + std::string(108, 'x')), testing::HasSubstr("107 bytes"));
  EXPECT_THAT(FailureAt((scratch_.Path() / "no/where").string()), testing::HasSubstr("No such file"));
}

TEST_F(ListenerTest, ABusThatHasItsPathAndTakesNoConnectionsYetIsWaitedFor) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path_.copy(address.sun_path, sizeof address.sun_path - 1);
  const base::FileDescriptor bound(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  ASSERT_EQ(::bind(bound.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  std::latch tries{1};
  auto connected = std::async(std::launch::async, [&] {
    tries.count_down();
    return static_cast<bool>(ConnectTo(path_));
  });
  tries.wait();
  for (int i = 0; i < 1000; ++i) std::this_thread::yield();
  ASSERT_EQ(::listen(bound.Get(), 1), 0);
  EXPECT_TRUE(connected.get());
}

TEST_F(ListenerTest, ConnectsToNothingWhereNobodyListens) {
  EXPECT_FALSE(ConnectTo(path_));
  EXPECT_EQ(errno, ENOENT);
}

}  // namespace
}  // namespace bus
