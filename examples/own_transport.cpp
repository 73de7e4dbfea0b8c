// A camera over a transport of one's own. This one is a table in memory; yours sends the blocks through a network.
#include <kelva/Camera.h>

#include <algorithm>
#include <cstring>
#include <iostream>

namespace {

class OwnCamera : public Camera {
 public:
  // A read asks for 65,536 bytes at a time. Progress is reported at each multiple of 262,144 bytes.
  OwnCamera() : Camera(65536, 262144) {}

  std::string Name() const override { return "Camera in memory"; }
  std::string MountPath() const override { return {}; }
  bool Open() override { return open_ = true; }
  void Close() override { open_ = false; }
  bool IsOpen() override { return open_; }
  void ListenForCameraLost(void (*)(void*), void*) override {}  // this one never goes
  bool WasDisconnected() override { return false; }
  bool IsScsiInquiryCorrect() const override { return true; }
  bool Cancel(bool, bool) override { return false; }
  void ClearCancel(bool) override {}
  bool CompareSn(const char* serial) const override { return std::strcmp(serial, "MEM-1") == 0; }

  // Sends the 16 bytes of the command, then moves at most `size` bytes: direction 1 to the camera, 2 from it.
  bool Transfer(const _VscCdb& command, int direction, int& size, char* buffer, bool) override {
    const float level = 80;
    const bool isBattery = command.bytes[0] == 0xC6 && command.bytes[2] == 0x06;
    if (!isBattery) throw CameraTransferError("The table has no such command.");
    size = direction == 2 ? std::min(size, static_cast<int>(sizeof level)) : 0;
    std::memcpy(buffer, &level, static_cast<std::size_t>(size));
    return true;
  }

 private:
  bool open_ = false;
};

}  // namespace

int main() {
  const boost::shared_ptr<Camera> camera(new OwnCamera);
  camera->Open();
  std::cout << camera->Name() << ", battery level " << camera->BatteryLevel() << "\n";
}
