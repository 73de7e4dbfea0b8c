#include <IOKit/IOReturn.h>

#include <atomic>
#include <optional>
#include <utility>

#include "bus/BusConnection.h"
#include "bus/SocketSession.h"
#include "bus/UserClientDoor.h"
#include "darwin/virtual/VirtualRegistry.h"
#include "tests/doors/Door.h"
#include "tests/doors/UsbCable.h"
#include "vcam/camera/InProcess.h"
#include "vcam/device/Sha1.h"
#include "vcam/server/testing/TestServer.h"

// The doors that need nothing of the system: cameras of this process, behind a bus, and behind a USB cable that is a socket.

namespace tests::doors {
namespace {

using Patience = std::shared_ptr<std::atomic<bool>>;

/// A session that waits as long as it is told to, until it has lost its patience.
class PatientSession : public bus::CommandSession {
 public:
  PatientSession(std::unique_ptr<bus::CommandSession> session, Patience patient)
      : session_(std::move(session)), patient_(std::move(patient)) {}

  int Start() override { return session_->Start(); }
  void End() override { session_->End(); }
  wire::Reply Execute(const wire::Command& command, std::chrono::milliseconds timeout) override {
    return session_->Execute(command, *patient_ ? timeout : std::chrono::milliseconds(1));
  }

 private:
  std::unique_ptr<bus::CommandSession> session_;
  Patience patient_;
};

/// A camera in the process's registry, whose commands go through a session.
class VirtualDoor : public Door {
 public:
  Counting counting() const override { return Counting::kAsTold; }
  void GrowImpatient() override { *patient_ = false; }

 protected:
  using MakeSession = std::function<std::unique_ptr<bus::CommandSession>()>;

  void Show(const vcam::Options& options, MakeSession make) {
    *patient_ = true;
    entry_ = registry_.AttachCamera({options.serial, options.vendor, options.product, options.revision,
                                     options.peripheralType, [make = std::move(make), patient = patient_](int& error) {
                                       error = kIOReturnSuccess;
                                       return bus::MakeUserClient(std::make_unique<PatientSession>(make(), patient));
                                     }});
  }
  void Hide() { registry_.Detach(entry_); }

 private:
  darwin::VirtualRegistry registry_;
  darwin::EntryId entry_ = 0;
  Patience patient_ = std::make_shared<std::atomic<bool>>(true);
};

class InProcessDoor : public VirtualDoor {
 public:
  void Plug(const vcam::Options& options) override {
    camera_ = std::make_shared<vcam::VirtualCamera>(options);
    Show(options, [camera = camera_] { return vcam::MakeInProcessSession(camera); });
  }
  void Arm(const vcam::Fault& fault) override { camera_->Arm(fault); }
  void Unplug(bool) override {
    Hide();
    camera_.reset();
  }

 private:
  std::shared_ptr<vcam::VirtualCamera> camera_;
};

class SocketDoor : public VirtualDoor {
 public:
  // First used here, libcrypto cleans up after this object, whose camera threads still hold state of it.
  SocketDoor() { vcam::Sha256Hex(""); }

  void Plug(const vcam::Options& options) override {
    bus::PlugRequest request{options.serial, options.storage.string(), "", "", 3};
    if (options.forwardOnly) request.traits |= bus::kForwardOnly;
    const auto answer = control_.Request(bus::Kind::kPlug, Encode(request));
    const auto id = bus::Decode<std::uint32_t>(answer.payload).value();
    Show(options, [path = server_.Path(), id] { return bus::MakeSocketSession(path, id); });
  }
  void Arm(const vcam::Fault& fault) override {
    control_.Request(bus::Kind::kFault,
                     Encode(bus::FaultRequest{kSerial, std::string(vcam::NameOf(fault.kind)), fault.at}));
  }
  void Unplug(bool hasGone) override {
    Hide();
    if (!hasGone) control_.Request(bus::Kind::kUnplug, bus::EncodeText(kSerial));
  }

 private:
  vcam::server::test::TestServer server_;
  bus::BusConnection control_{server_.Path()};
};

class UsbDoor : public VirtualDoor {
 public:
  Counting counting() const override { return Counting::kByKernel; }
  void Plug(const vcam::Options& options) override {
    cable_ = UsbCable::Make(options);
    Show(options, [cable = cable_] { return cable->MakeSession(); });
  }
  void Arm(const vcam::Fault& fault) override { cable_->camera().Arm(fault); }
  void Unplug(bool) override {
    Hide();
    cable_.reset();
  }

 private:
  std::shared_ptr<UsbCable> cable_;
};

template <typename Kind>
std::unique_ptr<Door> Make() {
  return std::make_unique<Kind>();
}

constexpr NamedDoor kDoors[] = {
    {"InProcess", Make<InProcessDoor>}, {"Socket", Make<SocketDoor>}, {"Usb", Make<UsbDoor>}};

}  // namespace

std::span<const NamedDoor> AllDoors() {
  return kDoors;
}

}  // namespace tests::doors
