#include <IOKit/IOReturn.h>

#include <map>
#include <memory>

#include "bus/UserClientDoor.h"
#include "darwin/virtual/VirtualRegistry.h"
#include "tests/doors/UsbCable.h"
#include "tests/stack/Door.h"

namespace tests::stack {
namespace {

/// Cameras behind USB cables, each with a host of its own.
class UsbDoor : public Door {
 public:
  void Plug(const vcam::Options& options) override {
    auto cable = doors::UsbCable::Make(options);
    const darwin::EntryId entry =
        registry_.AttachCamera({options.serial, options.vendor, options.product, options.revision,
                                options.peripheralType, [cable](int& error) {
                                  error = kIOReturnSuccess;
                                  return bus::MakeUserClient(cable->MakeSession());
                                }});
    cameras_[options.serial] = {std::move(cable), entry};
  }

  void Unplug(const std::string& serial) override {
    const auto plugged = cameras_.extract(serial);
    plugged.mapped().cable->Pull();
    registry_.Detach(plugged.mapped().entry);
  }

  void HasUnpluggedItself(const std::string& serial) override { Unplug(serial); }

  void Arm(const std::string& serial, const vcam::Fault& fault) override {
    cameras_.at(serial).cable->camera().Arm(fault);
  }
  void Disarm(const std::string& serial) override { cameras_.at(serial).cable->camera().Disarm(); }

 private:
  struct Plugged {
    std::shared_ptr<doors::UsbCable> cable;
    darwin::EntryId entry = 0;
  };

  darwin::VirtualRegistry registry_;
  std::map<std::string, Plugged> cameras_;
};

}  // namespace

Door& Door::Get() {
  static UsbDoor door;
  return door;
}

}  // namespace tests::stack
