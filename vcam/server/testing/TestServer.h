#ifndef KELVA_VCAM_SERVER_TESTING_TEST_SERVER_H_
#define KELVA_VCAM_SERVER_TESTING_TEST_SERVER_H_

#include <optional>
#include <string>
#include <thread>

#include "base/WakeUp.h"
#include "vcam/camera/testing/TestSupport.h"
#include "vcam/server/BusServer.h"

namespace vcam::server::test {

/// A bus served by a thread of this process, in a scratch folder.
class TestServer {
 public:
  TestServer() {
    server_.emplace(Path());
    thread_ = std::thread([this] { server_->Run(stop_.Descriptor()); });
  }
  ~TestServer() { Stop(); }

  std::string Path() const { return (scratch_.Path() / "bus").string(); }
  const vcam::test::ScratchStorage& Scratch() const { return scratch_; }

  /// Ends the bus, as if its process had ended.
  void Stop() {
    if (!thread_.joinable()) return;
    stop_.Signal();
    thread_.join();
    server_.reset();
  }

 private:
  vcam::test::ScratchStorage scratch_;
  base::WakeUp stop_;
  std::optional<BusServer> server_;
  std::thread thread_;
};

}  // namespace vcam::server::test

#endif  // KELVA_VCAM_SERVER_TESTING_TEST_SERVER_H_
