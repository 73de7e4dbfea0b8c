#include <map>
#include <memory>

#include "darwin/virtual/VirtualRegistry.h"
#include "tests/stack/Door.h"
#include "vcam/camera/InProcess.h"

namespace tests::stack {
namespace {

class InProcessDoor : public Door {
 public:
  void Plug(const vcam::Options& options) override {
    auto camera = std::make_shared<vcam::VirtualCamera>(options);
    const darwin::EntryId entry =
        registry_.AttachCamera({options.serial, options.vendor, options.product, options.revision,
                                options.peripheralType, vcam::OpenInProcess(camera)});
    cameras_[options.serial] = {std::move(camera), entry};
  }

  void Unplug(const std::string& serial) override {
    const Plugged plugged = cameras_.at(serial);
    cameras_.erase(serial);
    plugged.camera->Unplug();
    registry_.Detach(plugged.entry);
  }

  void HasUnpluggedItself(const std::string& serial) override { Unplug(serial); }

  void Arm(const std::string& serial, const vcam::Fault& fault) override { cameras_.at(serial).camera->Arm(fault); }
  void Disarm(const std::string& serial) override { cameras_.at(serial).camera->Disarm(); }

 private:
  struct Plugged {
    std::shared_ptr<vcam::VirtualCamera> camera;
    darwin::EntryId entry = 0;
  };

  darwin::VirtualRegistry registry_;
  std::map<std::string, Plugged> cameras_;
};

}  // namespace

Door& Door::Get() {
  static InProcessDoor door;
  return door;
}

}  // namespace tests::stack
