// The near end of a bus as a source of the registry: entries come and go with the events of the bus.
#include "bus/BusClient.h"

#include <map>
#include <utility>

#include "bus/BusConnection.h"
#include "bus/SocketSession.h"
#include "bus/UserClientDoor.h"
#include "darwin/registry/CameraEntries.h"

namespace bus {
namespace {

class BusSource : public darwin::RegistrySource {
 public:
  explicit BusSource(const std::string& path) : path_(path), connection_(path) {}

  void Start(darwin::Registry& registry) override {
    connection_.Request(Kind::kSubscribe, {});
    Dispatch(registry);
  }

  int Descriptor() const override { return connection_.Ended() ? -1 : connection_.Descriptor(); }
  int TimeoutMs() const override { return connection_.HasQueuedEvents() ? 0 : -1; }

  void Dispatch(darwin::Registry& registry) override {
    while (const std::optional<Frame> event = connection_.NextEvent()) Follow(registry, *event);
    if (!connection_.Ended()) return;
    for (const auto& [id, entry] : std::exchange(cameras_, {})) registry.Terminate(entry);
  }

 private:
  void Follow(darwin::Registry& registry, const Frame& event) {
    if (event.kind == Kind::kPlugged) {
      const auto status = Decode<CameraStatus>(event.payload);
      if (status) Add(registry, *status);
    } else if (const auto id = Decode<std::uint32_t>(event.payload)) {
      const auto found = cameras_.find(*id);
      if (found == cameras_.end()) return;
      const darwin::EntryId entry = found->second;
      cameras_.erase(found);
      registry.Terminate(entry);
    }
  }

  void Add(darwin::Registry& registry, const CameraStatus& status) {
    if (cameras_.count(status.id) != 0) return;
    const auto open = [path = path_, id = status.id](int&) { return MakeUserClient(MakeSocketSession(path, id)); };
    cameras_[status.id] =
        darwin::AddCamera(registry, registry.Root(),
                          {status.serial, status.vendor, status.product, status.revision, status.peripheralType, open});
  }

  std::string path_;
  BusConnection connection_;
  std::map<std::uint32_t, darwin::EntryId> cameras_;
};

}  // namespace

std::unique_ptr<darwin::RegistrySource> ConnectBus(const std::string& socketPath) {
  return std::make_unique<BusSource>(socketPath);
}

}  // namespace bus
