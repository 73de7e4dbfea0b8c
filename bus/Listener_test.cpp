#include "bus/Listener.h"

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>

#include "platform/Sockets.h"
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

  // A socket that has the path and takes no connections.
  base::FileDescriptor Bound() const {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path_.copy(address.sun_path, sizeof address.sun_path - 1);
    base::FileDescriptor socket(platform::LocalSocket());
    EXPECT_EQ(::bind(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    return socket;
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
  EXPECT_EQ(platform::PeerProcess(far.Get()), ::getpid());
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
  EXPECT_THAT(FailureAt(""), testing::HasSubstr("a socket's path has 1 to 10"));
  EXPECT_THAT(FailureAt(scratch_.Path().string() + "/" + std::string(108, 'x')),
              testing::HasSubstr("a socket's path has 1 to 10"));
  EXPECT_THAT(FailureAt((scratch_.Path() / "no/where").string()), testing::HasSubstr("No such file"));
}

TEST_F(ListenerTest, ABusThatHasItsPathAndTakesNoConnectionsYetIsWaitedFor) {
  const base::FileDescriptor bus = Bound();
  int waits = 0;
  EXPECT_TRUE(ConnectTo(path_, [&] {
    ++waits;
    if (waits == 19) ::listen(bus.Get(), 1);
  }));
  EXPECT_EQ(waits, 19);
}

TEST_F(ListenerTest, APathThatADeadBusLeftIsGivenUp) {
  const base::FileDescriptor bus = Bound();
  int waits = 0;
  EXPECT_FALSE(ConnectTo(path_, [&] { ++waits; }));
  EXPECT_EQ(errno, ECONNREFUSED);
  EXPECT_EQ(waits, 19);
}

TEST_F(ListenerTest, ConnectsToNothingWhereNobodyListens) {
  EXPECT_FALSE(ConnectTo(path_));
  EXPECT_EQ(errno, ENOENT);
}

}  // namespace
}  // namespace bus
