#ifndef KELVA_VCAM_SERVER_TESTING_TEST_SERVER_H_
#define KELVA_VCAM_SERVER_TESTING_TEST_SERVER_H_

#include <sys/eventfd.h>
#include <unistd.h>

#include <optional>
#include <string>
#include <thread>

#include "vcam/camera/testing/TestSupport.h"
#include "vcam/server/BusServer.h"

namespace vcam::server::test {

/// A bus served by a thread of this process, in a scratch folder.
class TestServer {
 public:
  TestServer() : stop_(::eventfd(0, EFD_CLOEXEC)) {
    server_.emplace(Path());
    thread_ = std::thread([this] { server_->Run(stop_.Get()); });
  }
  ~TestServer() { Stop(); }

  std::string Path() const { return (scratch_.Path() / "bus").string(); }
  const vcam::test::ScratchStorage& Scratch() const { return scratch_; }

  /// Ends the bus, as if its process had ended.
  void Stop() {
    const std::uint64_t one = 1;
    if (!thread_.joinable() || ::write(stop_.Get(), &one, sizeof one) != sizeof one) return;
    thread_.join();
    server_.reset();
  }

 private:
  vcam::test::ScratchStorage scratch_;
  base::FileDescriptor stop_;
  std::optional<BusServer> server_;
  std::thread thread_;
};

}  // namespace vcam::server::test

#endif  // KELVA_VCAM_SERVER_TESTING_TEST_SERVER_H_
