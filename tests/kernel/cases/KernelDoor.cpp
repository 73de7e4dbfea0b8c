#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "darwin/registry/Registry.h"
#include "darwin/udev/UdevSource.h"
#include "tests/doors/Door.h"
#include "tests/kernel/cases/Plugged.h"
#include "vcam/usbip/VhciPort.h"

// The door of the table of faults that is a real one: udev, sg, usb-storage and the kernel's USB stand between.

namespace tests::doors {
namespace {

using vcam::VirtualCamera;
using vcam::usbip::Speed;

/// A USB device that stays plugged in while the camera inside is exchanged for a new one.
class Cable {
 public:
  explicit Cable(std::shared_ptr<VirtualCamera> camera)
      : camera_(std::move(camera)),
        usb_(Model()),
        session_(PlugIn(), Device(), usb_),
        server_([this] { session_.Run(); }) {
    node_ = "/dev/none";
    if (!Eventually([this] { return !(node_ = NodeOf(kSerial)).empty(); })) Pull();
  }
  ~Cable() {
    Pull();
    server_.join();
    Eventually([this] { return !std::filesystem::exists(node_); });
  }
  Cable(const Cable&) = delete;
  Cable& operator=(const Cable&) = delete;

  void Exchange(std::shared_ptr<VirtualCamera> camera) {
    const std::lock_guard lock(mutex_);
    camera_ = std::move(camera);
  }

 private:
  static std::uint32_t Device() { return vcam::usbip::OfferOf(Speed::kHigh).DeviceId(); }
  static base::FileDescriptor PlugIn() {
    return vcam::usbip::PlugIntoController(vcam::usbip::DefaultController(), Device(), Speed::kHigh);
  }

  vcam::usbip::CameraModel Model() {
    vcam::usbip::CameraModel model = vcam::usbip::ModelOf(*camera_, faults_, Speed::kHigh);
    model.execute = [this](const wire::Command& command) { return Camera()->Execute(command); };
    return model;
  }
  std::shared_ptr<VirtualCamera> Camera() const {
    const std::lock_guard lock(mutex_);
    return camera_;
  }
  void Pull() { session_.Pull(); }

  mutable std::mutex mutex_;
  std::shared_ptr<VirtualCamera> camera_;
  vcam::usbip::CableFaults faults_{};
  vcam::usbip::UsbCamera usb_;
  vcam::usbip::Session session_;
  std::thread server_;
  std::string node_{};
};

class KernelDoor : public Door {
 public:
  KernelDoor() { darwin::Registry::Shared().SetSource(darwin::MakeUdevSource()); }

  Counting counting() const override { return Counting::kByKernel; }

  void Plug(const vcam::Options& options) override {
    camera_ = std::make_shared<VirtualCamera>(options);
    if (cable_) {
      cable_->Exchange(camera_);
    } else {
      cable_ = std::make_unique<Cable>(camera_);
    }
  }
  // The kernel gives a command up after the time that the library allows, which is soon over in the time of the guest.
  void GrowImpatient() override {}
  void Arm(const vcam::Fault& fault) override { camera_->Arm(fault); }
  void Unplug(bool hasGone) override {
    if (hasGone) cable_.reset();
  }

 private:
  std::shared_ptr<VirtualCamera> camera_;
  std::unique_ptr<Cable> cable_;
};

constexpr NamedDoor kDoors[] = {{"Kernel", [] { return std::unique_ptr<Door>(std::make_unique<KernelDoor>()); }}};

}  // namespace

std::span<const NamedDoor> AllDoors() {
  return kDoors;
}

}  // namespace tests::doors
