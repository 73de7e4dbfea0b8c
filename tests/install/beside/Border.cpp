// What crosses the border of the shared library: exceptions in both directions, a class derived from its own, its variable.
#include <kelva/Camera.h>
#include <kelva/OsxCameraError.h>

#include <cstring>
#include <iostream>
#include <stdexcept>

namespace {

/// A transport that answers nothing, or throws what the program sets.
class Transport : public Camera {
 public:
  Transport() : Camera(65536, 262144) {}
  std::string Name() const override { return "Transport"; }
  std::string MountPath() const override { return ""; }
  bool Open() override { return true; }
  void Close() override {}
  void ListenForCameraLost(void (*)(void*), void*) override {}
  bool WasDisconnected() override { return false; }
  bool IsScsiInquiryCorrect() const override { return true; }
  bool Cancel(bool, bool) override { return false; }
  void ClearCancel(bool) override {}
  bool IsOpen() override { return true; }
  bool CompareSn(const char*) const override { return false; }
  bool Transfer(const _VscCdb&, int, int& size, char*, bool) override {
    if (fail) fail();
    size = 0;
    return true;
  }
  void (*fail)() = nullptr;
};

template <typename Error>
bool Throws(Transport& camera, void (*fail)()) {
  camera.fail = fail;
  try {
    camera.GetTime();
  } catch (const Error&) {
    return true;
  } catch (...) {
  }
  return false;
}

int failures = 0;

void Expect(bool good, const char* what) {
  if (good) return;
  std::cout << "wrong: " << what << "\n";
  ++failures;
}

}  // namespace

int main() {
  Transport camera;
  Expect(Throws<CameraTransferError>(camera, [] { throw CameraTransferError("mine"); }), "own CameraTransferError");
  Expect(Throws<OsxCameraError>(camera, [] { throw OsxCameraError("mine"); }), "own OsxCameraError");
  Expect(Throws<std::runtime_error>(camera, [] { throw std::runtime_error("mine"); }), "another exception");
  Expect(Throws<CameraError>(camera, nullptr), "the library's CameraError");
  Expect(dynamic_cast<Transport*>(static_cast<Camera*>(&camera)) == &camera, "dynamic_cast");
  Camera::throwExceptions_ = false;
  Expect(!Throws<CameraError>(camera, nullptr), "Camera::throwExceptions_ is the library's own");
  return failures;
}
