// The source of cameras of a real machine: joins tracker, udev and the registry.

#include "darwin/udev/UdevSource.h"

#include <utility>

#include "darwin/registry/CameraEntries.h"
#include "darwin/sg/SgUserClient.h"
#include "darwin/udev/CameraTracker.h"
#include "darwin/udev/Surroundings.h"
#include "darwin/udev/UdevUnitSource.h"
#include "darwin/udev/UnitReader.h"

namespace darwin {
namespace udev {
namespace {

// Makes a udev context of its own, because any thread may open the camera.
bool IsStillThere(const ScsiUnit& unit) {
  const UdevContext context(udev_new());
  const UdevDevice device(context ? udev_device_new_from_syspath(context.get(), ("/sys" + unit.path).c_str())
                                  : nullptr);
  return device && ReadUnit(device.get()) == unit;
}

std::unique_ptr<UserClient> OpenUserClient(const ScsiUnit& unit, const SentenceHandler& report) {
  return std::make_unique<sg::SgUserClient>(
      sg::SgSystem::Kernel(),
      sg::SgTarget{unit.node, [unit] { return IsStillThere(unit); },
                   [report](const std::string& text) { ProcessSurroundings(report).Report(text); }});
}

class RegistryPublisher : public Publisher {
 public:
  explicit RegistryPublisher(SentenceHandler report) : report_(std::move(report)) {}
  void Use(Registry& registry) { registry_ = &registry; }

  EntryId Publish(const ScsiUnit& unit) override {
    CameraDescription camera{unit.serial, unit.vendor, unit.product, unit.revision, {}, {}};
    camera.peripheralType = static_cast<unsigned>(unit.peripheralType);
    camera.openUserClient = [unit, report = report_](int&) { return OpenUserClient(unit, report); };
    return AddCamera(*registry_, registry_->Root(), camera);
  }
  void Withdraw(EntryId published) override { registry_->Terminate(published); }

 private:
  SentenceHandler report_;
  Registry* registry_ = nullptr;
};

class UdevSource : public RegistrySource {
 public:
  explicit UdevSource(const SentenceHandler& report) : surroundings_(report), publisher_(report) {}

  void Start(Registry& registry) override {
    publisher_.Use(registry);
    tracker_.Start();
  }

  int Descriptor() const override {
    SayOnceWhyDeaf();
    return units_.Descriptor();
  }

  int TimeoutMs() const override { return tracker_.TimeoutMs(); }
  void Dispatch(Registry&) override { tracker_.Dispatch(); }
  std::string WhyDeaf() const override { return units_.WhyDeaf(); }

 private:
  // Said only to a program that waits for cameras: a single enumeration needs no monitor.
  void SayOnceWhyDeaf() const {
    if (std::exchange(askedToListen_, true)) return;
    const std::string why = units_.WhyDeaf();
    if (!why.empty()) surroundings_.Report(why);
  }

  UdevUnitSource units_;
  mutable ProcessSurroundings surroundings_;
  RegistryPublisher publisher_;
  CameraTracker tracker_{units_, surroundings_, publisher_};
  mutable bool askedToListen_ = false;
};

}  // namespace
}  // namespace udev

std::unique_ptr<RegistrySource> MakeUdevSource(const std::function<void(const std::string&)>& report) {
  return std::make_unique<udev::UdevSource>(report);
}

}  // namespace darwin
