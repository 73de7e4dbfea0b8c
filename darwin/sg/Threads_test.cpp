// One user client that several threads use at once. ThreadSanitizer says whether they may.

#include <IOKit/IOReturn.h>
#include <gtest/gtest.h>
#include <scsi/sg.h>

#include <array>
#include <cstring>

#include "base/testing/Crowd.h"
#include "darwin/sg/SgUserClient.h"

namespace darwin::sg {
namespace {

constexpr int kRounds = 1000;

/// A node that remembers nothing and fills whatever buffer a command brings.
class FillingSystem final : public SgSystem {
 public:
  int Open(const char*) override { return 42; }
  void Close(int) override {}
  int Lock(int) override { return 0; }
  int Ioctl(int, unsigned long request, void* argument) override {
    if (request == SG_IO) {
      auto& header = *static_cast<sg_io_hdr_t*>(argument);
      if (header.dxferp != nullptr) std::memset(header.dxferp, header.cmdp[1], header.dxfer_len);
    }
    return 0;
  }
  void* Map(int, std::size_t) override { return nullptr; }
  void Unmap(void*, std::size_t) override {}
  bool WaitForHangUp(int, int) override { return false; }
};

class Threads : public testing::Test {
 protected:
  void Start() { client_.CallScalar(0); }
  void End() { client_.CallScalar(1); }

  /// Reads bytes that are all `fill`, and sees that no other command's are among them.
  void Read(std::uint8_t fill) {
    std::array<std::uint8_t, 512> buffer{};
    wire::UserClientTransferRequest request{};
    request.direction = 2;
    request.cdbLength = 16;
    request.cdb[1] = fill;
    request.length = static_cast<std::int32_t>(buffer.size());
    request.bufferAddress = reinterpret_cast<std::uintptr_t>(buffer.data());
    wire::UserClientTransferResult result{};
    std::size_t size = sizeof result;
    if (client_.CallStruct(2, &request, sizeof request, &result, &size) != kIOReturnSuccess) return;
    for (const std::uint8_t byte : buffer) ASSERT_EQ(byte, fill);
  }

  FillingSystem system_;
  SgUserClient client_{system_, {"/dev/sg3", [] { return true; }, [](const std::string&) {}}};
};

TEST_F(Threads, CommandsOfOneSessionDoNotMix) {
  Start();
  const base::Crowd crowd(kRounds, {[this] { Read(0x11); }, [this] { Read(0x22); }});
}

TEST_F(Threads, ASessionMayEndWhileCommandsRun) {
  const base::Crowd crowd(10 * kRounds, {[this] { Start(); }, [this] { End(); }, [this] { Read(0x11); }});
}

}  // namespace
}  // namespace darwin::sg
