#include "apps/mount/Pending.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fuse.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "base/FileDescriptor.h"

namespace apps {
namespace {

template <typename Arguments>
struct Message {
  fuse_in_header header{};
  Arguments arguments{};
};

/// libfuse with requests that a test makes. Its answers go nowhere.
class Requests {
 public:
  using Seen = std::function<void(fuse_req_t request)>;

  Requests(Seen seen) : seen_(std::move(seen)) {
    std::string name = "test";
    std::array<char*, 2> words = {name.data(), nullptr};
    fuse_args arguments = FUSE_ARGS_INIT(1, words.data());
    fuse_lowlevel_ops operations{};
    operations.statfs = [](fuse_req_t request, fuse_ino_t) {
      static_cast<Requests*>(fuse_req_userdata(request))->seen_(request);
    };
    session_.reset(fuse_session_new(&arguments, &operations, sizeof(operations), this));
    fuse_opt_free_args(&arguments);
    null_.Reset(::open("/dev/null", O_RDWR | O_CLOEXEC));
    // A session on a descriptor that is open already needs no mount.
    EXPECT_EQ(fuse_session_mount(session_.get(), ("/dev/fd/" + std::to_string(null_.Release())).c_str()), 0);
    Message<fuse_init_in> start;
    start.arguments.major = FUSE_KERNEL_VERSION;
    start.arguments.minor = FUSE_KERNEL_MINOR_VERSION;
    Send(FUSE_INIT, &start, sizeof(start));
  }

  void Send() {
    fuse_in_header header{};
    Send(FUSE_STATFS, &header, sizeof(header));
  }

 private:
  void Send(std::uint32_t opcode, void* message, std::size_t size) {
    fuse_in_header header{};
    header.len = static_cast<std::uint32_t>(size);
    header.opcode = opcode;
    header.unique = unique_ += 2;
    header.nodeid = FUSE_ROOT_ID;
    std::memcpy(message, &header, sizeof(header));
    fuse_buf buffer{};
    buffer.size = size;
    buffer.mem = message;
    fuse_session_process_buf(session_.get(), &buffer);
  }

  struct Freed {
    void operator()(fuse_session* session) const {
      fuse_session_unmount(session);
      fuse_session_destroy(session);
    }
  };

  Seen seen_;
  base::FileDescriptor null_;
  std::unique_ptr<fuse_session, Freed> session_;
  std::uint64_t unique_ = 0;
};

TEST(PendingTest, ARequestIsTakenOnce) {
  Pending pending;
  Pending::Ticket ticket = 0;
  Requests requests([&](fuse_req_t request) { ticket = pending.Add(request); });
  requests.Send();
  const auto request = pending.Take(ticket);
  ASSERT_TRUE(request);
  EXPECT_FALSE(pending.Take(ticket));
  pending.Fail(ticket, EIO);
  EXPECT_EQ(fuse_reply_err(*request, 0), 0);
}

TEST(PendingTest, AfterTheEndARequestIsAnsweredAtOnce) {
  Pending pending;
  Pending::Ticket ticket = 0;
  Requests requests([&](fuse_req_t request) { ticket = pending.Add(request); });
  pending.FailAll(ENODEV);
  requests.Send();
  EXPECT_FALSE(pending.Take(ticket));
}

// libfuse frees a request with its answer, which may come from another thread as soon as the request waits.
TEST(PendingTest, ARequestMayBeAnsweredBeforeAddReturns) {
  Pending pending;
  Requests requests([&](fuse_req_t request) { pending.Add(request); });
  std::atomic<bool> ends = false;
  std::thread other([&] {
    for (Pending::Ticket ticket = 1; !ends;) {
      if (const auto request = pending.Take(ticket)) {
        fuse_reply_err(*request, EIO);
        ++ticket;
      }
    }
  });
  constexpr int kRequests = 20'000;
  for (int i = 0; i < kRequests; ++i) requests.Send();
  ends = true;
  other.join();
  pending.FailAll(ENODEV);
}

}  // namespace
}  // namespace apps
