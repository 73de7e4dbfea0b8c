// The machine of this substitute: a registry that the suite fills itself.

#include <algorithm>
#include <cstring>
#include <map>
#include <sstream>
#include <vector>

#include "darwin/cf/Accounting.h"
#include "darwin/conformance/RegistryTest.h"
#include "darwin/registry/Accounting.h"
#include "darwin/virtual/VirtualRegistry.h"

namespace conformance {
namespace {

class Driver final : public darwin::UserClient {
 public:
  int CallScalar(std::uint32_t selector) override { return selector == kAccept ? kIOReturnSuccess : kIOReturnNotReady; }

  int CallStruct(std::uint32_t selector, const void* in, std::size_t inSize, void* out, std::size_t* outSize) override {
    const auto* input = static_cast<const char*>(in);
    auto* output = static_cast<char*>(out);
    switch (selector) {
      case kReverse:
        *outSize = std::min(inSize, *outSize);
        std::reverse_copy(input + inSize - *outSize, input + inSize, output);
        return kIOReturnSuccess;
      case kBoast:
        std::memset(output, '!', *outSize);
        *outSize += 100;
        return kIOReturnSuccess;
      case kScribble:
        std::memset(output, '?', *outSize);
        *outSize = 0;
        return kIOReturnNotReady;
      default:
        return kIOReturnUnsupported;
    }
  }
};

darwin::CameraDescription Describe(const Camera& camera) {
  return {camera.serial,
          camera.vendor,
          "Glimmer",
          camera.revision,
          camera.peripheralType,
          [refusal = camera.refusal](int& error) -> std::unique_ptr<darwin::UserClient> {
            if (refusal != kIOReturnSuccess) {
              error = refusal;
              return nullptr;
            }
            return std::make_unique<Driver>();
          }};
}

/// What the process holds at one moment.
struct Holdings {
  std::size_t handles = darwin::AccountForRegistry().handles;
  std::size_t references = darwin::AccountForRegistry().references;
  std::size_t ports = darwin::AccountForRegistry().ports;
  std::size_t objects = darwin::LiveCoreFoundationObjects();
  std::size_t descriptors = darwin::OpenDescriptors();
};

class VirtualMachine final : public Machine {
 public:
  int Plug(const Camera& camera) override {
    const int name = next_++;
    cameras_[name] = registry_.AttachCamera(Describe(camera));
    return name;
  }

  void Unplug(int camera) override { registry_.Detach(cameras_.at(camera)); }

  void Announce(int camera, std::uint32_t messageType) override {
    // The driver's service is two below the USB device, and entries are numbered as they are added.
    darwin::Registry::Shared().SendMessage(cameras_.at(camera) + 2, messageType);
  }

  std::string StillHeld() const override {
    const Holdings now;
    std::ostringstream text;
    const auto compare = [&text](const char* what, std::size_t held, std::size_t before) {
      if (held != before) text << what << ": " << held << ", were " << before << ". ";
    };
    compare("handles", now.handles, before_.handles);
    compare("references", now.references, before_.references);
    compare("ports", now.ports, before_.ports);
    compare("objects", now.objects, before_.objects);
    compare("descriptors", now.descriptors, before_.descriptors);
    return text.str();
  }

 private:
  // This thread's run loop has a descriptor for as long as the thread lives.
  [[maybe_unused]] const CFRunLoopRef loop_ = CFRunLoopGetCurrent();
  const Holdings before_{};
  darwin::VirtualRegistry registry_;
  std::map<int, darwin::EntryId> cameras_;
  int next_ = 1;
};

}  // namespace

std::unique_ptr<Machine> MakeMachine() {
  return std::make_unique<VirtualMachine>();
}

CFMutableDictionaryRef MatchingCameras() {
  return IOServiceMatching(kDriver);
}

std::string SerialOf(io_service_t service) {
  IOObjectRetain(service);
  return TextProperty(ParentOf(ParentOf(Object(service))), "USB Serial Number");
}

}  // namespace conformance
