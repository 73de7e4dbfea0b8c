#ifndef KELVA_USB_OSX_TESTING_LISTENER_TEST_H_
#define KELVA_USB_OSX_TESTING_LISTENER_TEST_H_

#include <gtest/gtest.h>

#include <boost/shared_ptr.hpp>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "Listener.h"
#include "OsxCamera.h"
#include "darwin/cf/Accounting.h"
#include "darwin/registry/Accounting.h"
#include "darwin/virtual/VirtualRegistry.h"

// Listeners over the substitute's registry, with cameras that the test plugs and unplugs.

namespace listening {

using Log = std::vector<std::string>;

inline void RunPending() {
  while (CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true) == kCFRunLoopRunHandledSource) {
  }
}

/// What a program hears: "+K1" attached, "-K1" lost, "bad". Keeps the cameras until they are lost.
struct Program {
  kelva::Listener::Functions Functions() {
    return {.attached = [this](auto camera, auto& serial) { Attached(camera, serial); },
            .lost = [this](auto camera, auto& serial) { Lost(camera, serial); },
            .badCamera = [this] { Hear("bad"); }};
  }
  void Attached(const boost::shared_ptr<Camera>& camera, const std::string& serial) {
    EXPECT_FALSE(camera->IsOpen());
    EXPECT_TRUE(camera->CompareSn(serial.c_str()));
    cameras.push_back(camera);
    Hear("+" + serial);
  }
  void Lost(const boost::shared_ptr<Camera>& camera, const std::string& serial) {
    lost.push_back(camera);
    std::erase(cameras, camera);
    Hear("-" + serial);
  }
  void Hear(const std::string& event) {
    heard.push_back(event);
    if (then) then(event);
    if (throws) throw std::runtime_error(event);
  }

  Log heard;
  std::vector<boost::shared_ptr<Camera>> cameras;
  std::vector<boost::shared_ptr<Camera>> lost;
  std::function<void(const std::string&)> then;
  bool throws = false;
};

/// What the process holds at one moment.
struct Holdings {
  std::size_t handles = darwin::AccountForRegistry().handles;
  std::size_t references = darwin::AccountForRegistry().references;
  std::size_t ports = darwin::AccountForRegistry().ports;
  std::size_t objects = darwin::LiveCoreFoundationObjects();
  std::size_t descriptors = darwin::OpenDescriptors();
  bool operator==(const Holdings&) const = default;
};

class ListenerTest : public testing::Test {
 protected:
  ~ListenerTest() override { EXPECT_TRUE(Holdings() == before_) << "a listener left something behind"; }

  darwin::EntryId Plug(const std::string& serial, unsigned peripheralType = 3) {
    return registry_.AttachCamera({serial, "Kelva", "Glimmer", "1.00", peripheralType, nullptr});
  }
  void PlugBadCamera() { registry_.AttachCamera({"", "Kelva", "Glimmer", "Q42", 5, nullptr}); }
  void Unplug(darwin::EntryId camera) { registry_.Detach(camera); }

 private:
  // This thread's run loop has a descriptor for as long as the thread lives.
  const CFRunLoopRef loop_ = CFRunLoopGetCurrent();
  const Holdings before_;
  darwin::VirtualRegistry registry_;
};

}  // namespace listening

#endif  // KELVA_USB_OSX_TESTING_LISTENER_TEST_H_
