// IOServiceAddMatchingNotification: what is handed out, in which order, and when somebody is told.

#include <functional>

#include "darwin/conformance/RegistryTest.h"

namespace conformance {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A registration that notes its calls and drains as far as it is told to.
struct Listener {
  int drainAtMost = 1000;
  int calls = 0;
  io_iterator_t iterator = 0;  ///< the number of the latest call
  std::vector<std::string> serials = {};

  static void OnMatch(void* self, io_iterator_t number) {
    auto& listener = *static_cast<Listener*>(self);
    ++listener.calls;
    listener.iterator = number;
    for (int i = 0; i < listener.drainAtMost; ++i) {
      const Object service(IOIteratorNext(number));
      if (!service) return;
      listener.serials.push_back(SerialOf(service));
    }
  }
};

class MatchNotification : public RegistryTest {
 protected:
  void TearDown() override {
    port_.reset();
    RegistryTest::TearDown();
  }

  Object Listen(Listener& listener, CFDictionaryRef matching = MatchingCameras()) {
    io_iterator_t iterator = 0;
    EXPECT_EQ(IOServiceAddMatchingNotification(port_->Get(), kIOFirstMatchNotification, matching, Listener::OnMatch,
                                               &listener, &iterator),
              kIOReturnSuccess);
    EXPECT_NE(iterator, 0u);
    return Object(iterator);
  }

  IONotificationPortRef ThePort() { return port_->Get(); }
  void DestroyPort() { port_.reset(); }

 private:
  std::unique_ptr<Port> port_ = std::make_unique<Port>();
};

/// Needs a second class of drivers, or a thousand cameras at once.
class MatchNotificationOfACamera : public MatchNotification {};

TEST_F(MatchNotification, WithoutMatchTheIteratorIsThereAndEmpty) {
  Listener listener;
  const Object iterator = Listen(listener);
  EXPECT_EQ(IOIteratorNext(iterator.Number()), 0u);
}

TEST_F(MatchNotification, WhatIsPresentIsHandedOutAtOnceNewestFirst) {
  for (const char* serial : {"K1", "K2", "K3"}) Plug({.serial = serial});
  Listener listener;
  const Object iterator = Listen(listener);
  EXPECT_THAT(SerialsOf(Drain(iterator)), ElementsAre("K3", "K2", "K1"));
  EXPECT_EQ(listener.calls, 0);
}

TEST_F(MatchNotification, NothingIsDeliveredBeforeTheFirstDrain) {
  Listener listener;
  const Object iterator = Listen(listener);
  Plug({.serial = "K1"});
  RunPending();
  EXPECT_EQ(listener.calls, 0);
  EXPECT_THAT(SerialsOf(Drain(iterator)), ElementsAre("K1"));
}

TEST_F(MatchNotification, OnceDrainedTheNextMatchIsAnnounced) {
  Listener listener;
  const Object iterator = Listen(listener);
  Drain(iterator);
  Plug({.serial = "K1"});
  EXPECT_EQ(listener.calls, 0) << "never from inside of another call";
  RunPending();
  EXPECT_EQ(listener.calls, 1);
  EXPECT_EQ(listener.iterator, iterator.Number());
  EXPECT_THAT(listener.serials, ElementsAre("K1"));
}

TEST_F(MatchNotification, MatchesBeforeTheCallbackAreOneAnnouncementNewestFirst) {
  Listener listener;
  const Object iterator = Listen(listener);
  Drain(iterator);
  for (const char* serial : {"K1", "K2", "K3"}) Plug({.serial = serial});
  RunPending();
  EXPECT_EQ(listener.calls, 1);
  EXPECT_THAT(listener.serials, ElementsAre("K3", "K2", "K1"));
}

TEST_F(MatchNotification, ACallbackThatDrainsIsCalledForEachLaterMatch) {
  Listener listener;
  const Object iterator = Listen(listener);
  Drain(iterator);
  for (const char* serial : {"K1", "K2"}) {
    Plug({.serial = serial});
    RunPending();
  }
  EXPECT_EQ(listener.calls, 2);
  EXPECT_THAT(listener.serials, ElementsAre("K1", "K2"));
}

TEST_F(MatchNotification, ACallbackThatDoesNotDrainIsNotCalledAgain) {
  Listener listener{.drainAtMost = 0};
  const Object iterator = Listen(listener);
  Drain(iterator);
  for (const char* serial : {"K1", "K2"}) {
    Plug({.serial = serial});
    RunPending();
  }
  EXPECT_EQ(listener.calls, 1);
  EXPECT_THAT(SerialsOf(Drain(iterator)), ElementsAre("K2", "K1"));
}

TEST_F(MatchNotification, ACallbackThatDrainsPartlyIsNotCalledForTheRest) {
  Listener listener{.drainAtMost = 1};
  const Object iterator = Listen(listener);
  Drain(iterator);
  for (const char* serial : {"K1", "K2"}) Plug({.serial = serial});
  RunPending();
  Plug({.serial = "K3"});
  RunPending();
  EXPECT_EQ(listener.calls, 1);
  EXPECT_THAT(listener.serials, ElementsAre("K2"));
  EXPECT_THAT(SerialsOf(Drain(iterator)), ElementsAre("K3", "K1"));
}

TEST_F(MatchNotification, TakingTheLastWithoutAskingForMoreDoesNotArm) {
  Plug({.serial = "K1"});
  Listener listener;
  const Object iterator = Listen(listener);
  const Object only = NextOf(iterator);
  Plug({.serial = "K2"});
  RunPending();
  EXPECT_EQ(listener.calls, 0);
  Drain(iterator);
}

TEST_F(MatchNotification, ACameraThatHasGoneMeanwhileIsStillHandedOut) {
  Listener listener;
  const Object iterator = Listen(listener);
  Drain(iterator);
  Unplug(Plug({.serial = "K1"}));
  RunPending();
  EXPECT_EQ(listener.calls, 1);
  EXPECT_THAT(listener.serials, ElementsAre("K1"));
}

TEST_F(MatchNotification, AReplugIsANewMatch) {
  Listener listener;
  const Object iterator = Listen(listener);
  Drain(iterator);
  for (int i = 0; i < 3; ++i) {
    Unplug(Plug({.serial = "K1"}));
    RunPending();
  }
  EXPECT_THAT(listener.serials, ElementsAre("K1", "K1", "K1"));
}

TEST_F(MatchNotificationOfACamera, OtherClassesAreNotAnnounced) {
  Listener listener;
  const Object iterator = Listen(listener, IOServiceMatching(kDiskDriver));
  Drain(iterator);
  Plug({.peripheralType = 3});
  RunPending();
  EXPECT_EQ(listener.calls, 0);
  Plug({.serial = "K2", .peripheralType = 0});
  RunPending();
  EXPECT_THAT(listener.serials, ElementsAre("K2"));
}

TEST_F(MatchNotification, TwoRegistrationsAreToldEachInTheOrderOfRegistration) {
  std::vector<int> order;
  struct Entry {
    std::vector<int>* order;
    int number;
    static void OnMatch(void* self, io_iterator_t iterator) {
      auto* entry = static_cast<Entry*>(self);
      entry->order->push_back(entry->number);
      while (const Object service{IOIteratorNext(iterator)}) {
      }
    }
  };
  Entry first{&order, 1};
  Entry second{&order, 2};
  std::vector<Object> iterators;
  for (Entry* entry : {&first, &second}) {
    io_iterator_t number = 0;
    IOServiceAddMatchingNotification(ThePort(), kIOFirstMatchNotification, MatchingCameras(), Entry::OnMatch, entry,
                                     &number);
    iterators.emplace_back(number);
    Drain(iterators.back());
  }
  Plug();
  RunPending();
  EXPECT_THAT(order, ElementsAre(1, 2));
}

TEST_F(MatchNotification, MessagesWaitForARunLoop) {
  Listener listener;
  const Object iterator = Listen(listener);
  Drain(iterator);
  const int camera = Plug({.serial = "K1"});
  Plug({.serial = "K2"});
  Unplug(camera);
  EXPECT_EQ(listener.calls, 0);
  RunPending();
  EXPECT_THAT(listener.serials, ElementsAre("K2", "K1"));
}

TEST_F(MatchNotification, AReleasedIteratorIsNotCalledForAMessageThatWaits) {
  Listener listener;
  Object iterator = Listen(listener);
  Drain(iterator);
  Plug();
  iterator = Object();
  RunPending();
  EXPECT_EQ(listener.calls, 0);
}

TEST_F(MatchNotification, AReleasedIteratorEndsTheRegistration) {
  Listener listener;
  Object iterator = Listen(listener);
  Drain(iterator);
  iterator = Object();
  Plug();
  RunPending();
  EXPECT_EQ(listener.calls, 0);
}

TEST_F(MatchNotification, ACallbackMayReleaseItsOwnIterator) {
  // The message carries a reference, so the iterator is there until the callback returns.
  const auto release = [](void*, io_iterator_t iterator) {
    EXPECT_EQ(IOObjectRelease(iterator), KERN_SUCCESS);
    EXPECT_TRUE(Object(IOIteratorNext(iterator)));
  };
  io_iterator_t number = 0;
  IOServiceAddMatchingNotification(ThePort(), kIOFirstMatchNotification, MatchingCameras(), release, nullptr, &number);
  EXPECT_EQ(IOIteratorNext(number), 0u);
  Plug();
  RunPending();
  EXPECT_EQ(IOObjectRelease(number), KERN_INVALID_NAME);
}

TEST_F(MatchNotification, ACallbackMayReleaseItsIteratorAndDestroyItsPort) {
  struct Owner {
    std::function<void()> destroyPort;
    Object iterator = {};
    int calls = 0;
    static void OnMatch(void* self, io_iterator_t) {
      auto& owner = *static_cast<Owner*>(self);
      ++owner.calls;
      owner.iterator = Object();
      owner.destroyPort();
    }
  };
  Owner owner{[this] { DestroyPort(); }};
  io_iterator_t number = 0;
  IOServiceAddMatchingNotification(ThePort(), kIOFirstMatchNotification, MatchingCameras(), Owner::OnMatch, &owner,
                                   &number);
  owner.iterator = Object(number);
  Drain(owner.iterator);
  Plug();
  RunPending();
  Plug();
  RunPending();
  EXPECT_EQ(owner.calls, 1);
}

TEST_F(MatchNotification, EachPortIsToldForItself) {
  const Port second;
  Listener here;
  Listener there;
  const Object iterator = Listen(here);
  io_iterator_t number = 0;
  IOServiceAddMatchingNotification(second.Get(), kIOFirstMatchNotification, MatchingCameras(), Listener::OnMatch,
                                   &there, &number);
  const Object other(number);
  Drain(iterator);
  Drain(other);
  Plug({.serial = "K1"});
  RunPending();
  EXPECT_THAT(here.serials, ElementsAre("K1"));
  EXPECT_THAT(there.serials, ElementsAre("K1"));
}

TEST_F(MatchNotification, ADestroyedPortDeliversNothing) {
  Listener listener;
  const Object iterator = Listen(listener);
  Drain(iterator);
  Plug({.serial = "K1"});
  DestroyPort();
  RunPending();
  EXPECT_EQ(listener.calls, 0);
  EXPECT_THAT(SerialsOf(Drain(iterator)), ElementsAre("K1"));
}

TEST_F(MatchNotificationOfACamera, AboveTheKernelsLimitMatchesAreDropped) {
  Listener listener;
  const Object iterator = Listen(listener);
  for (int i = 0; i < 1030; ++i) Unplug(Plug({.serial = std::to_string(i)}));
  const std::vector<std::string> serials = SerialsOf(Drain(iterator));
  ASSERT_EQ(serials.size(), 1024u);
  EXPECT_EQ(serials.front(), "1023");
  EXPECT_EQ(serials.back(), "0");
}

TEST_F(MatchNotification, AnUnknownTypeIsUnsupportedAndConsumesTheDictionary) {
  const Owned<CFMutableDictionaryRef> matching(MatchingCameras());
  CFRetain(matching.Get());
  io_iterator_t iterator = kUntouched;
  EXPECT_EQ(
      IOServiceAddMatchingNotification(ThePort(), "NoSuchType", matching.Get(), Listener::OnMatch, nullptr, &iterator),
      kIOReturnUnsupported);
  EXPECT_EQ(iterator, kUntouched);
  EXPECT_EQ(CFGetRetainCount(matching.Get()), 1);
}

TEST_F(MatchNotification, TheDictionaryIsConsumedAndCopied) {
  const Owned<CFMutableDictionaryRef> matching(MatchingCameras());
  CFRetain(matching.Get());
  Listener listener;
  io_iterator_t number = 0;
  EXPECT_EQ(IOServiceAddMatchingNotification(ThePort(), kIOFirstMatchNotification, matching.Get(), Listener::OnMatch,
                                             &listener, &number),
            kIOReturnSuccess);
  const Object iterator(number);
  EXPECT_EQ(CFGetRetainCount(matching.Get()), 1);
  CFDictionarySetValue(matching.Get(), CFSTR(kIOProviderClassKey), CFSTR("SomethingElse"));
  Plug({.serial = "K1"});
  EXPECT_THAT(SerialsOf(Drain(iterator)), ElementsAre("K1"));
}

TEST_F(MatchNotification, ANullDictionaryIsABadArgument) {
  io_iterator_t iterator = kUntouched;
  EXPECT_EQ(IOServiceAddMatchingNotification(ThePort(), kIOFirstMatchNotification, nullptr, Listener::OnMatch, nullptr,
                                             &iterator),
            kIOReturnBadArgument);
  EXPECT_EQ(iterator, kUntouched);
}

TEST_F(MatchNotification, AValueThatCannotBeHandedOverIsUnsupportedAndConsumed) {
  const Owned<CFMutableDictionaryRef> matching(MatchingCameras());
  CFDictionarySetValue(matching.Get(), CFSTR("Source"), IONotificationPortGetRunLoopSource(ThePort()));
  CFRetain(matching.Get());
  io_iterator_t iterator = kUntouched;
  EXPECT_EQ(IOServiceAddMatchingNotification(ThePort(), kIOFirstMatchNotification, matching.Get(), Listener::OnMatch,
                                             nullptr, &iterator),
            kIOReturnUnsupported);
  EXPECT_EQ(iterator, kUntouched);
  EXPECT_EQ(CFGetRetainCount(matching.Get()), 1);
}

using NullPortDeathTest = RegistryTest;

TEST_F(NullPortDeathTest, ANullPortStopsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  io_iterator_t iterator = 0;
  EXPECT_DEATH(IOServiceAddMatchingNotification(nullptr, kIOFirstMatchNotification, MatchingCameras(),
                                                Listener::OnMatch, nullptr, &iterator),
               "");
  EXPECT_DEATH(IOServiceAddInterestNotification(nullptr, 0, kIOGeneralInterest, nullptr, nullptr, &iterator), "");
  EXPECT_DEATH(IONotificationPortGetRunLoopSource(nullptr), "");
}

}  // namespace
}  // namespace conformance
