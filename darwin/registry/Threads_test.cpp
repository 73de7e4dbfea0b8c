// Everything that several threads may do to the registry at once. ThreadSanitizer says whether they may.

#include <IOKit/IOMessage.h>

#include <atomic>
#include <thread>

#include "base/testing/Crowd.h"
#include "darwin/registry/testing/RegistryFixture.h"

namespace darwin {
namespace {

constexpr int kRounds = 2000;

/// A source whose calls change it, which they may: no two threads call it at once.
class RestlessSource final : public RegistrySource {
 public:
  void Start(Registry&) override { ++calls_; }
  int Descriptor() const override {
    ++calls_;
    return -1;
  }
  int TimeoutMs() const override { return ++calls_ % 3 == 0 ? 1000 : -1; }
  void Dispatch(Registry&) override { ++calls_; }
  std::string WhyDeaf() const override { return std::to_string(++calls_); }

 private:
  mutable int calls_ = 0;
};

/// A source that has another descriptor each time, so that run loops have to be told again.
class ChangingSource final : public RegistrySource {
 public:
  void Start(Registry&) override {}
  int Descriptor() const override { return ++descriptor_; }
  void Dispatch(Registry&) override {}

 private:
  mutable int descriptor_ = 0;
};

class QuietClient final : public UserClient {
 public:
  int CallScalar(std::uint32_t) override { return kIOReturnSuccess; }
  int CallStruct(std::uint32_t, const void*, std::size_t, void*, std::size_t*) override { return kIOReturnSuccess; }
};

class Threads : public RegistryFixture {
 protected:
  void SetUp() override { TheRegistry().SetSource(std::make_unique<RestlessSource>()); }

  void PlugAndUnplug() {
    const EntryId camera =
        Publish({{"Camera"}, {{"Name", "K100"}}, [](int&) { return std::make_unique<QuietClient>(); }});
    TheRegistry().SendMessage(camera, kIOMessageServiceIsSuspended);
    TheRegistry().Terminate(camera);
  }

  static void LookAt(io_service_t service) {
    io_registry_entry_t parent = 0;
    IORegistryEntryGetParentEntry(service, kIOServicePlane, &parent);
    IOObjectRelease(parent);
    if (const CFTypeRef name = IORegistryEntryCreateCFProperty(service, CFSTR("Name"), kCFAllocatorDefault, 0)) {
      CFRelease(name);
    }
    IOObjectRetain(service);
    IOObjectRelease(service);
  }

  static void Use(io_service_t service) {
    io_connect_t connection = 0;
    if (IOServiceOpen(service, mach_task_self(), 0, &connection) != kIOReturnSuccess) return;
    IOConnectCallScalarMethod(connection, 0, nullptr, 0, nullptr, nullptr);
    IOServiceClose(connection);
  }

  static void Enumerate() {
    io_iterator_t iterator = 0;
    IOServiceGetMatchingServices(kIOMainPortDefault, IOServiceMatching("Camera"), &iterator);
    while (const io_service_t service = IOIteratorNext(iterator)) {
      LookAt(service);
      for (int i = 0; i < 5; ++i) Use(service);
      IOObjectRelease(service);
    }
    IOObjectRelease(iterator);
  }

  /// What a program does that waits for cameras, and for what becomes of each.
  class Listening {
   public:
    Listening() {
      CFRunLoopAddSource(CFRunLoopGetCurrent(), IONotificationPortGetRunLoopSource(port_), kCFRunLoopDefaultMode);
      IOServiceAddMatchingNotification(port_, kIOFirstMatchNotification, IOServiceMatching("Camera"), OnMatch, this,
                                       &matches_);
      Drain();
    }
    ~Listening() {
      for (const io_object_t interest : interests_) IOObjectRelease(interest);
      IOObjectRelease(matches_);
      IONotificationPortDestroy(port_);
    }
    Listening(const Listening&) = delete;
    Listening& operator=(const Listening&) = delete;

   private:
    void Drain() {
      while (const io_service_t service = IOIteratorNext(matches_)) {
        io_object_t interest = 0;
        IOServiceAddInterestNotification(
            port_, service, kIOGeneralInterest, [](auto...) {}, nullptr, &interest);
        interests_.push_back(interest);
        IOObjectRelease(service);
      }
    }
    static void OnMatch(void* self, io_iterator_t) { static_cast<Listening*>(self)->Drain(); }

    const IONotificationPortRef port_ = IONotificationPortCreate(kIOMainPortDefault);
    io_iterator_t matches_ = 0;
    std::vector<io_object_t> interests_;
  };

  static void ListenForAWhile() {
    const Listening listening;
    for (int i = 0; i < 3; ++i) CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
  }
};

TEST_F(Threads, PlugEnumerateOpenAndListenAtOnce) {
  const auto plug = [this] { PlugAndUnplug(); };
  const base::Crowd crowd(kRounds, {plug, plug, Enumerate, Enumerate, ListenForAWhile, ListenForAWhile});
}

TEST_F(Threads, AskWhatIsHeldWhileOthersPlug) {
  const base::Crowd crowd(kRounds, {[this] { PlugAndUnplug(); }, Enumerate, [] { AccountForRegistry(); }});
}

TEST_F(Threads, AskTheSourceWhileAnotherIsNamed) {
  Registry& registry = TheRegistry();
  const auto ask = [&registry] {
    registry.LastSourceError();
    registry.WhyDeaf();
  };
  const auto name = [&registry] { registry.SetSource(std::make_unique<RestlessSource>()); };
  // A thread for each call: one that takes a lock hides that the call before it took none.
  const base::Crowd crowd(
      kRounds, {ask, name, [&registry] { registry.LookAgain(); }, [&registry] { registry.SourceDescriptor(); },
                [&registry] { registry.SourceTimeoutMs(); }});
}

TEST_F(Threads, MakePortsWhileWhatIsWaitedForChanges) {
  Registry& registry = TheRegistry();
  registry.SetSource(std::make_unique<ChangingSource>());
  const Listening listening;
  const auto makePort = [] { IONotificationPortDestroy(IONotificationPortCreate(kIOMainPortDefault)); };
  const base::Crowd crowd(kRounds, {makePort, makePort, [&registry] { registry.LookAgain(); }});
}

/// Connections of a service, which a thread closes one after the other.
std::vector<io_connect_t> Opened(io_service_t service, int count) {
  std::vector<io_connect_t> connections(static_cast<std::size_t>(count));
  for (io_connect_t& connection : connections) {
    EXPECT_EQ(IOServiceOpen(service, mach_task_self(), 0, &connection), kIOReturnSuccess);
  }
  return connections;
}

TEST_F(Threads, CallADriverWhileOthersPlugAndCloseTheirConnections) {
  const EntryId camera =
      Publish({{"Camera"}, {{"Name", "K100"}}, [](int&) { return std::make_unique<QuietClient>(); }});
  const io_service_t service = First("Camera");
  const io_connect_t connection = Opened(service, 1).front();
  const auto call = [connection] { IOConnectCallScalarMethod(connection, 0, nullptr, 0, nullptr, nullptr); };
  const auto close = [own = Opened(service, kRounds / 4)]() mutable {
    IOServiceClose(own.back());
    own.pop_back();
  };
  {
    const base::Crowd crowd(kRounds / 4, {call, call, close, [this] { PlugAndUnplug(); }});
  }
  IOServiceClose(connection);
  IOObjectRelease(service);
  TheRegistry().Terminate(camera);
}

/// Two threads that wait for each other. Relaxed: nothing but a lock of the registry may keep them apart.
struct Meeting {
  static void Tell(std::atomic<bool>& what) { what.store(true, std::memory_order_relaxed); }
  static void Await(const std::atomic<bool>& what) {
    while (!what.load(std::memory_order_relaxed)) std::this_thread::yield();
  }
  std::atomic<bool> first = false;
  std::atomic<bool> second = false;
};

TEST_F(Threads, OpenACameraThatGoesWhileItsDriverIsAsked) {
  Meeting meeting;
  const EntryId camera = Publish({{"Camera"}, {}, [&](int&) {
                                    Meeting::Tell(meeting.first);
                                    Meeting::Await(meeting.second);
                                    return std::make_unique<QuietClient>();
                                  }});
  const io_service_t service = First("Camera");
  std::thread unplug([&] {
    Meeting::Await(meeting.first);
    TheRegistry().Terminate(camera);
    Meeting::Tell(meeting.second);
  });
  io_connect_t connection = 0;
  EXPECT_EQ(IOServiceOpen(service, mach_task_self(), 0, &connection), kIOReturnNoDevice);
  unplug.join();
  IOObjectRelease(service);
}

/// A port on this thread's run loop, and another thread that holds an object while a message about it is delivered.
class Hearing {
 public:
  Hearing() {
    CFRunLoopAddSource(CFRunLoopGetCurrent(), IONotificationPortGetRunLoopSource(port), kCFRunLoopDefaultMode);
  }
  ~Hearing() { IONotificationPortDestroy(port); }
  Hearing(const Hearing&) = delete;
  Hearing& operator=(const Hearing&) = delete;

  /// To be called while the message is delivered.
  static void Meet(Meeting& meeting) {
    Meeting::Tell(meeting.first);
    Meeting::Await(meeting.second);
  }
  void UntilHeard(io_object_t object) {
    std::thread hold([&] {
      Meeting::Await(meeting.first);
      IOObjectRetain(object);
      IOObjectRelease(object);
      Meeting::Tell(meeting.second);
    });
    while (!meeting.first) CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
    hold.join();
  }

  const IONotificationPortRef port = IONotificationPortCreate(kIOMainPortDefault);
  Meeting meeting;
};

TEST_F(Threads, HearOfACameraThatAnotherThreadHolds) {
  Hearing hearing;
  const EntryId camera = Publish({{"Camera"}, {{"Name", "K100"}}, {}});
  const io_service_t service = First("Camera");
  io_object_t interest = 0;
  const auto onMessage = [](void* meeting, auto...) { Hearing::Meet(*static_cast<Meeting*>(meeting)); };
  IOServiceAddInterestNotification(hearing.port, service, kIOGeneralInterest, onMessage, &hearing.meeting, &interest);
  TheRegistry().SendMessage(camera, kIOMessageServiceIsSuspended);
  hearing.UntilHeard(service);
  IOObjectRelease(interest);
  IOObjectRelease(service);
  TheRegistry().Terminate(camera);
}

TEST_F(Threads, HearOfANewCameraByAnIteratorThatAnotherThreadHolds) {
  Hearing hearing;
  io_iterator_t matches = 0;
  const auto onMatch = [](void* meeting, io_iterator_t) { Hearing::Meet(*static_cast<Meeting*>(meeting)); };
  IOServiceAddMatchingNotification(hearing.port, kIOFirstMatchNotification, IOServiceMatching("Camera"), onMatch,
                                   &hearing.meeting, &matches);
  EXPECT_EQ(IOIteratorNext(matches), 0U);
  const EntryId camera = Publish({{"Camera"}, {{"Name", "K100"}}, {}});
  hearing.UntilHeard(matches);
  IOObjectRelease(matches);
  TheRegistry().Terminate(camera);
}

TEST_F(Threads, HearOfACameraWhileOthersSpeakOfItAndLookAtIt) {
  const EntryId camera = Publish({{"Camera"}, {{"Name", "K100"}}, {}});
  const auto speak = [this, camera] { TheRegistry().SendMessage(camera, kIOMessageServiceIsSuspended); };
  {
    const Listening listening;
    const base::Crowd crowd(kRounds, {speak, Enumerate, Enumerate});
    while (crowd.IsBusy()) CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
  }
  TheRegistry().Terminate(camera);
}

}  // namespace
}  // namespace darwin
