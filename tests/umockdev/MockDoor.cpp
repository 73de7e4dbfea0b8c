#include <memory>

#include "darwin/udev/UdevSource.h"
#include "tests/doors/Door.h"
#include "tests/umockdev/MockMachine.h"

namespace tests::doors {
namespace {

constexpr int kPort = 0;

/// A camera that udev finds and that is reached through /dev/sgN, on a mock machine.
class MockDoor : public Door {
 public:
  MockDoor() { darwin::Registry::Shared().SetSource(darwin::MakeUdevSource()); }

  Counting counting() const override { return Counting::kByKernel; }

  void Plug(const vcam::Options& options) override {
    camera_ = std::make_shared<vcam::VirtualCamera>(options);
    auto door = std::make_shared<mock::SgDoor>(camera_);
    door->onGone = [this] { machine_.Vanish(kPort); };
    machine_.Plug({.serial = options.serial,
                   .vendor = options.vendor,
                   .product = options.product,
                   .revision = options.revision,
                   .peripheralType = options.peripheralType,
                   .port = kPort});
    machine_.Attach(kPort, std::move(door));
  }

  // The kernel's own time-out, which ends such a command, is over at once on this machine.
  void GrowImpatient() override {}

  void Arm(const vcam::Fault& fault) override { camera_->Arm(fault); }
  void Unplug(bool) override { machine_.Unplug(kPort); }

 private:
  mock::MockMachine machine_;
  std::shared_ptr<vcam::VirtualCamera> camera_;
};

constexpr NamedDoor kDoors[] = {{"SgIo", [] { return std::unique_ptr<Door>(std::make_unique<MockDoor>()); }}};

}  // namespace

std::span<const NamedDoor> AllDoors() {
  return kDoors;
}

}  // namespace tests::doors
