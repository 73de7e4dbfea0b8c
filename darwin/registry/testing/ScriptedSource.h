#ifndef KELVA_DARWIN_REGISTRY_TESTING_SCRIPTED_SOURCE_H_
#define KELVA_DARWIN_REGISTRY_TESTING_SCRIPTED_SOURCE_H_

#include <unistd.h>

#include <array>
#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>

#include "base/WakeUp.h"
#include "darwin/registry/testing/RegistryFixture.h"

namespace darwin {

/// What the source under test does and what it was asked; it outlives the source.
struct Script {
  base::WakeUp news;
  std::atomic<int> starts{0};
  std::atomic<int> dispatches{0};
  std::atomic<int> stopAt{-1};  ///< the dispatch that stops the run loop
  std::atomic<int> timeoutMs{-1};
  std::atomic<int> asked{0};  ///< how often it was asked what to wait for
  std::atomic<bool> startFails{false};
  std::atomic<bool> dispatchFails{false};
  std::atomic<EntryId> camera{0};

  void Tell() { news.Signal(); }
};

class ScriptedSource final : public RegistrySource {
 public:
  explicit ScriptedSource(Script& script) : script_(script) {}

  void Start(Registry&) override {
    ++script_.starts;
    if (script_.startFails) throw std::runtime_error("The bus cannot be reached.");
  }

  int Descriptor() const override {
    ++script_.asked;
    return script_.news.Descriptor();
  }
  int TimeoutMs() const override { return script_.timeoutMs; }
  std::string WhyDeaf() const override { return "Nobody tells."; }

  /// Publishes a camera when the descriptor says so.
  void Dispatch(Registry& registry) override {
    if (++script_.dispatches == script_.stopAt) CFRunLoopStop(CFRunLoopGetCurrent());
    if (script_.dispatchFails) throw std::runtime_error("The bus was lost.");
    std::array<char, 64> told;
    if (::read(script_.news.Descriptor(), told.data(), told.size()) <= 0) return;
    script_.camera = registry.Add(registry.Root(), {{"Camera"}, {}, {}});
    registry.RegisterService(script_.camera);
  }

 private:
  Script& script_;
};

class Source : public RegistryFixture {
 protected:
  void SetUp() override { TheRegistry().SetSource(std::make_unique<ScriptedSource>(script_)); }
  void TearDown() override {
    TheRegistry().Terminate(script_.camera);
    RegistryFixture::TearDown();
  }

  Script script_;
};

/// A port in this thread's loop and a registration for cameras that stops the loop.
class Listening {
 public:
  Listening() : port_(IONotificationPortCreate(kIOMainPortDefault)) {
    CFRunLoopAddSource(CFRunLoopGetCurrent(), IONotificationPortGetRunLoopSource(port_), kCFRunLoopDefaultMode);
    result = IOServiceAddMatchingNotification(port_, kIOFirstMatchNotification, IOServiceMatching("Camera"), OnMatch,
                                              this, &iterator_);
    Drain(iterator_);
  }
  ~Listening() {
    IOObjectRelease(iterator_);
    IONotificationPortDestroy(port_);
  }
  Listening(const Listening&) = delete;
  Listening& operator=(const Listening&) = delete;

  kern_return_t result = 0;
  int cameras = 0;

 private:
  static int Drain(io_iterator_t iterator) {
    int count = 0;
    while (const io_service_t service = IOIteratorNext(iterator)) {
      IOObjectRelease(service);
      ++count;
    }
    return count;
  }

  static void OnMatch(void* self, io_iterator_t iterator) {
    static_cast<Listening*>(self)->cameras += Drain(iterator);
    CFRunLoopStop(CFRunLoopGetCurrent());
  }

  const IONotificationPortRef port_;
  io_iterator_t iterator_ = 0;
};

}  // namespace darwin

#endif  // KELVA_DARWIN_REGISTRY_TESTING_SCRIPTED_SOURCE_H_
