#include <algorithm>
#include <map>
#include <memory>

#include "darwin/udev/UdevSource.h"
#include "tests/stack/Door.h"
#include "tests/umockdev/MockMachine.h"

namespace tests::stack {
namespace {

/// Cameras that udev finds and that are reached through /dev/sgN, on a mock machine.
class UdevDoor : public Door {
 public:
  UdevDoor() { darwin::Registry::Shared().SetSource(darwin::MakeUdevSource()); }

  void Plug(const vcam::Options& options) override {
    const int port = FreePort();
    auto camera = std::make_shared<vcam::VirtualCamera>(options);
    auto door = std::make_shared<mock::SgDoor>(camera);
    door->onGone = [this, port] { machine_.Vanish(port); };
    machine_.Plug({.serial = options.serial,
                   .vendor = options.vendor,
                   .product = options.product,
                   .revision = options.revision,
                   .peripheralType = options.peripheralType,
                   .port = port});
    machine_.Attach(port, std::move(door));
    cameras_[options.serial] = {std::move(camera), port};
  }

  void Unplug(const std::string& serial) override {
    const auto plugged = cameras_.extract(serial);
    plugged.mapped().camera->Unplug();
    machine_.Unplug(plugged.mapped().port);
  }

  void HasUnpluggedItself(const std::string& serial) override { Unplug(serial); }

  void Arm(const std::string& serial, const vcam::Fault& fault) override { cameras_.at(serial).camera->Arm(fault); }
  void Disarm(const std::string& serial) override { cameras_.at(serial).camera->Disarm(); }

 private:
  struct Plugged {
    std::shared_ptr<vcam::VirtualCamera> camera;
    int port = 0;
  };

  int FreePort() const {
    int port = 0;
    for (const auto& [serial, plugged] : cameras_) port = std::max(port, plugged.port + 1);
    return port;
  }

  mock::MockMachine machine_;
  std::map<std::string, Plugged> cameras_;
};

}  // namespace

Door& Door::Get() {
  static UdevDoor door;
  return door;
}

}  // namespace tests::stack
