#include "vcam/usbip/Server.h"
#include "base/SendAll.h"
#include "base/testing/NoFreeDescriptor.h"

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include "vcam/usbip/CameraModel.h"

namespace vcam::usbip {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class ServerTest : public ::testing::Test {
 protected:
  ServerTest() {
    server_.onComplaint = [this](const std::string& sentence) { complaints_.push_back(sentence); };
    server_.userOf = [this](int socket) { return users_.empty() ? PeerUser(socket) : NextUser(); };
    server_.greetingTime = std::chrono::milliseconds(400);
  }
  ~ServerTest() override { Stop(); }
  void Start() {
    thread_ = std::thread([this] { server_.Run(stop_.Get()); });
  }
  void Stop() {
    ::eventfd_write(stop_.Get(), 1);
    if (thread_.joinable()) thread_.join();
  }
  static base::FileDescriptor NewSocket() {
    return base::FileDescriptor(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  }
  base::FileDescriptor Connect() {
    if (!thread_.joinable()) Start();
    return Connect(NewSocket());
  }
  base::FileDescriptor Connect(base::FileDescriptor socket) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(server_.Port());
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::connect(socket.Get(), reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    return socket;
  }
  base::FileDescriptor AskToImport(const std::string& busId) {
    base::FileDescriptor socket = Connect();
    base::Bytes request{0x01, 0x11, 0x80, 0x03, 0, 0, 0, 0};
    base::AppendText(request, busId);
    request.resize(8 + 32);
    EXPECT_TRUE(base::SendAll(socket.Get(), request));
    return socket;
  }
  static base::Bytes Receive(const base::FileDescriptor& socket, std::size_t size) {
    base::Bytes bytes(size);
    return base::ReceiveAll(socket.Get(), bytes) ? bytes : base::Bytes{};
  }

  /// The users of the next connections, in order. The server's thread reads them, so they are set before it starts.
  std::optional<uid_t> NextUser() {
    const std::optional<uid_t> user = users_.front();
    users_.erase(users_.begin());
    return user;
  }

  wire::Reply reply_;
  std::vector<std::string> complaints_;
  std::vector<std::optional<uid_t>> users_;
  Server server_{OfferOf(Speed::kHigh),
                 {{"Kelva", "Camera", "A7", Speed::kHigh}, {}, [this](const wire::Command&) { return reply_; }, {}},
                 0};
  base::FileDescriptor stop_{::eventfd(0, EFD_CLOEXEC)};
  std::thread thread_;
};

TEST_F(ServerTest, ListsTheCamera) {
  const base::FileDescriptor socket = Connect();
  base::SendAll(socket.Get(), base::Bytes{0x01, 0x11, 0x80, 0x05, 0, 0, 0, 0});
  EXPECT_EQ(Receive(socket, 8 + 4 + 312 + 4).size(), 328U);
}

TEST_F(ServerTest, HandsTheCameraToOneHostAtATime) {
  const base::FileDescriptor first = AskToImport("1-1");
  ASSERT_EQ(Receive(first, 320).size(), 320U);
  const base::FileDescriptor second = AskToImport("1-1");
  EXPECT_THAT(Receive(second, 8), ElementsAre(0x01, 0x11, 0, 3, 0, 0, 0, 2));
}

TEST_F(ServerTest, KnowsNoOtherDevice) {
  const base::FileDescriptor socket = AskToImport("1-2");
  EXPECT_THAT(Receive(socket, 8), ElementsAre(0x01, 0x11, 0, 3, 0, 0, 0, 4));
}

/// While it lives, no thread can be made.
class NoThreads {
 public:
  NoThreads() {
    pthread_attr_t huge;
    ::pthread_getattr_default_np(&before_);
    ::pthread_attr_init(&huge);
    EXPECT_EQ(::pthread_attr_setstacksize(&huge, std::size_t{1} << 46), 0);
    EXPECT_EQ(::pthread_setattr_default_np(&huge), 0);
    ::pthread_attr_destroy(&huge);
  }
  ~NoThreads() {
    ::pthread_setattr_default_np(&before_);
    ::pthread_attr_destroy(&before_);
  }
  NoThreads(const NoThreads&) = delete;
  NoThreads& operator=(const NoThreads&) = delete;

 private:
  pthread_attr_t before_{};
};

TEST_F(ServerTest, AHostForWhichNoThreadCanBeMadeIsRefusedAndTheNextOneServed) {
  const base::FileDescriptor other = Connect();  // starts the server's own thread
  {
    const NoThreads none;
    const base::FileDescriptor socket = AskToImport("1-1");
    // What it was told comes before the attempt; the end of the connection comes after it.
    Receive(socket, 320);
    EXPECT_THAT(Receive(socket, 1), IsEmpty());
  }
  const base::FileDescriptor next = AskToImport("1-1");
  EXPECT_EQ(Receive(next, 320).size(), 320U);
  Stop();
  EXPECT_THAT(complaints_, ElementsAre(HasSubstr("Cannot serve a host: ")));
}

TEST_F(ServerTest, PullsTheCableWhenItEnds) {
  const base::FileDescriptor host = AskToImport("1-1");
  ASSERT_EQ(Receive(host, 320).size(), 320U);
  Stop();
  EXPECT_THAT(Receive(host, 1), IsEmpty());
}

TEST_F(ServerTest, ComplainsOfAPeerThatSpeaksAnotherLanguage) {
  const base::FileDescriptor socket = Connect();
  base::SendAll(socket.Get(), base::Bytes{'G', 'E', 'T', ' ', '/', '\r', '\n', '\n'});
  EXPECT_THAT(Receive(socket, 1), IsEmpty());
  Stop();
  EXPECT_THAT(complaints_, ElementsAre(HasSubstr("1.1.1")));
}

TEST_F(ServerTest, ServesItsOwnUserAndRoot) {
  users_ = {::geteuid(), 0};
  for (int i = 0; i < 2; ++i) {
    const base::FileDescriptor socket = AskToImport("1-2");
    EXPECT_THAT(Receive(socket, 8), ElementsAre(0x01, 0x11, 0, 3, 0, 0, 0, 4));
  }
}

TEST_F(ServerTest, RefusesOtherUsersAndComplainsOnce) {
  const uid_t neighbour = ::geteuid() + 1;
  users_ = {neighbour, std::nullopt, neighbour, ::geteuid()};
  for (int i = 0; i < 3; ++i) EXPECT_THAT(Receive(AskToImport("1-1"), 1), IsEmpty());
  EXPECT_EQ(Receive(AskToImport("1-1"), 320).size(), 320U);
  Stop();
  EXPECT_THAT(complaints_, ElementsAre(HasSubstr("connection of user " + std::to_string(neighbour) + ";")));
}

/// Sends a request for the camera one byte every 30 ms; the number of bytes until the server hangs up.
std::size_t DripImport(const base::FileDescriptor& socket) {
  base::Bytes request{0x01, 0x11, 0x80, 0x03, 0, 0, 0, 0, '1', '-', '1'};
  request.resize(8 + 32);
  for (std::size_t sent = 0; sent < request.size(); ++sent) {
    pollfd answer{socket.Get(), POLLIN, 0};
    if (::poll(&answer, 1, 30) != 0) return sent;
    ::send(socket.Get(), &request[sent], 1, MSG_NOSIGNAL);
  }
  return request.size();
}

TEST_F(ServerTest, GivesTheWholeGreetingOneDeadline) {
  const base::FileDescriptor socket = Connect();
  EXPECT_LT(DripImport(socket), 40U);
  EXPECT_THAT(Receive(socket, 1), IsEmpty());
}

TEST_F(ServerTest, WaitsWhenNoDescriptorIsFree) {
  base::FileDescriptor early = NewSocket();
  Start();
  std::optional<base::test::NoFreeDescriptor> none(std::in_place);
  const base::FileDescriptor socket = Connect(std::move(early));
  EXPECT_TRUE(base::SendAll(socket.Get(), base::Bytes{0x01, 0x11, 0x80, 0x05, 0, 0, 0, 0}));
  EXPECT_LT(base::test::ProcessorTimeUntilReadable(socket.Get(), std::chrono::milliseconds(500)),
            std::chrono::milliseconds(100));
  none.reset();
  EXPECT_EQ(Receive(socket, 328).size(), 328U);
}

}  // namespace
}  // namespace vcam::usbip
