#include "darwin/registry/Messages.h"

#include <stdexcept>

#include "darwin/registry/testing/RegistryFixture.h"

// Callbacks that throw, which the frameworks do not provide for.

namespace darwin {
namespace {

class ThrowingCallbacks : public RegistryFixture {
 protected:
  ThrowingCallbacks() {
    CFRunLoopAddSource(CFRunLoopGetCurrent(), IONotificationPortGetRunLoopSource(port_), kCFRunLoopDefaultMode);
  }

  void TearDown() override {
    for (const io_object_t object : held_) {
      EXPECT_EQ(IOObjectRelease(object), KERN_SUCCESS);
      EXPECT_EQ(IOObjectRelease(object), KERN_INVALID_NAME) << "a message kept a reference";
    }
    IONotificationPortDestroy(port_);
    RegistryFixture::TearDown();
  }

  static void OnMatch(void* calls, io_iterator_t iterator) {
    while (const io_object_t service = IOIteratorNext(iterator)) IOObjectRelease(service);
    CountAndThrow(calls);
  }
  static void OnMessage(void* calls, io_service_t, uint32_t, void*) { CountAndThrow(calls); }
  static void CountAndThrow(void* calls) {
    ++*static_cast<int*>(calls);
    throw std::runtime_error("thrown by a callback");
  }

  void ListenForMatches() {
    io_iterator_t iterator = 0;
    IOServiceAddMatchingNotification(port_, kIOFirstMatchNotification, IOServiceMatching("Camera"), OnMatch, &matches_,
                                     &iterator);
    while (IOIteratorNext(iterator) != 0) {
    }
    held_.push_back(iterator);
  }
  void ListenForMessages() {
    const io_service_t service = First("Camera");
    io_object_t notification = 0;
    IOServiceAddInterestNotification(port_, service, kIOGeneralInterest, OnMessage, &messages_, &notification);
    IOObjectRelease(service);
    held_.push_back(notification);
  }

  const IONotificationPortRef port_ = IONotificationPortCreate(kIOMainPortDefault);
  std::vector<io_object_t> held_;
  int matches_ = 0;
  int messages_ = 0;
};

TEST_F(ThrowingCallbacks, KeepNoOtherFromItsMessageAndLeaveNoReference) {
  ListenForMatches();
  ListenForMatches();
  const EntryId camera = Publish({{"Camera"}, {}, {}});
  EXPECT_THROW(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false), std::runtime_error);
  EXPECT_EQ(matches_, 2);
  ListenForMessages();
  ListenForMessages();
  TheRegistry().Terminate(camera);
  EXPECT_THROW(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false), std::runtime_error);
  EXPECT_EQ(messages_, 2);
}

}  // namespace
}  // namespace darwin
