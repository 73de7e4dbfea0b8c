#ifndef KELVA_DARWIN_SG_TESTING_SCRIPTED_SYSTEM_H_
#define KELVA_DARWIN_SG_TESTING_SCRIPTED_SYSTEM_H_

#include <scsi/sg.h>

#include <cerrno>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "darwin/sg/SgSystem.h"

namespace darwin::sg {

/// A kernel with one node, which answers as a test says and keeps count of what was asked.
class ScriptedSystem : public SgSystem {
 public:
  static constexpr int kDescriptor = 42;

  int openError = 0;
  int lockError = 0;
  int largestTransfer = 122880;  // 0: the node does not answer the question
  int reservedAtMost = 65536;    // the kernel clamps what is asked for
  bool mapsReserved = true;      // false: an emulated node, which has no memory to map
  bool hangsUp = false;
  std::function<int(sg_io_hdr_t&)> command = [](sg_io_hdr_t&) { return 0; };

  std::vector<std::string> opened;
  int closed = 0;
  int reserved = 0;
  std::vector<std::uint8_t> reservedBuffer;
  int mapped = 0;
  int unmapped = 0;
  int closedBeforeUnmap = 0;
  int mappedCommands = 0;
  int commands = 0;
  int hangUpWaits = 0;

  int Open(const char* node) override {
    opened.emplace_back(node);
    return openError == 0 ? kDescriptor : Fail(openError);
  }
  void Close(int) override { ++closed; }
  int Lock(int) override { return lockError == 0 ? 0 : Fail(lockError); }
  int Ioctl(int, unsigned long request, void* argument) override;
  void* Map(int, std::size_t size) override;
  void Unmap(void*, std::size_t) override {
    ++unmapped;
    closedBeforeUnmap = closed;
  }
  bool WaitForHangUp(int, int) override {
    ++hangUpWaits;
    return hangsUp;
  }

  static int Fail(int error) {
    errno = error;
    return -1;
  }

 private:
  int Run(sg_io_hdr_t& header);
};

}  // namespace darwin::sg

#endif  // KELVA_DARWIN_SG_TESTING_SCRIPTED_SYSTEM_H_
