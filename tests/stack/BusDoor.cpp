#include <thread>

#include "base/WakeUp.h"
#include "bus/BusClient.h"
#include "bus/BusConnection.h"
#include "darwin/registry/Registry.h"
#include "tests/stack/Door.h"
#include "vcam/camera/testing/TestSupport.h"
#include "vcam/device/Sha1.h"
#include "vcam/server/BusServer.h"

namespace tests::stack {
namespace {

/// A bus served by a thread of this process, and the registry filled from its socket.
class BusDoor : public Door {
 public:
  BusDoor()
      : path_((scratch_.Path() / "bus").string()),
        server_(path_),
        thread_([this] { server_.Run(stop_.Descriptor()); }),
        connection_(path_) {
    // First used here, libcrypto cleans up after this object, whose camera threads still hold state of it.
    vcam::Sha256Hex("");
    darwin::Registry::Shared().SetSource(bus::ConnectBus(path_));
  }

  ~BusDoor() override {
    stop_.Signal();
    thread_.join();
  }

  void Plug(const vcam::Options& options) override {
    bus::PlugRequest request;
    request.serial = options.serial;
    request.storage = options.storage.string();
    request.revision = options.revision;
    request.peripheralType = options.peripheralType;
    if (options.forwardOnly) request.traits |= bus::kForwardOnly;
    connection_.Request(bus::Kind::kPlug, bus::Encode(request));
  }

  void Unplug(const std::string& serial) override { connection_.Request(bus::Kind::kUnplug, bus::EncodeText(serial)); }

  // The bus has seen it.
  void HasUnpluggedItself(const std::string&) override {}

  void Arm(const std::string& serial, const vcam::Fault& fault) override {
    bus::FaultRequest request{serial, std::string(vcam::NameOf(fault.kind)), fault.at};
    connection_.Request(bus::Kind::kFault, bus::Encode(request));
  }

  void Disarm(const std::string& serial) override {
    connection_.Request(bus::Kind::kFault, bus::Encode(bus::FaultRequest{serial, "none", 1}));
  }

 private:
  vcam::test::ScratchStorage scratch_;
  std::string path_;
  vcam::server::BusServer server_;
  base::WakeUp stop_;
  std::thread thread_;
  bus::BusConnection connection_;
};

}  // namespace

Door& Door::Get() {
  static BusDoor door;
  return door;
}

}  // namespace tests::stack
