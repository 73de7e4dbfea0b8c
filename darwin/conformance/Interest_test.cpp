// IOServiceAddInterestNotification: every message of one service, in order.

#include <IOKit/IOMessage.h>

#include "darwin/conformance/RegistryTest.h"

namespace conformance {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::uint32_t kPowerMessage = 0xE0000270;

/// True for what a driver tells when it is opened and closed.
bool IsDriversChoice(std::uint32_t type) {
  return type == kIOMessageServiceIsRequestingClose || type == kIOMessageServiceIsAttemptingOpen ||
         type == kIOMessageServiceWasClosed;
}

/// A registration that notes what it is told.
struct Witness {
  std::vector<std::uint32_t> types = {};
  std::vector<std::uint32_t> choices = {};  ///< what the driver chose to tell besides
  std::vector<io_service_t> services = {};
  std::string serial = {};  ///< read from the service during the latest call

  static void OnMessage(void* self, io_service_t number, std::uint32_t type, void*) {
    auto& witness = *static_cast<Witness*>(self);
    if (IsDriversChoice(type)) {
      witness.choices.push_back(type);
      return;
    }
    witness.types.push_back(type);
    witness.services.push_back(number);
    IOObjectRetain(number);
    witness.serial = SerialOf(Object(number));
  }
};

class Interest : public RegistryTest {
 protected:
  void TearDown() override {
    port_.reset();
    RegistryTest::TearDown();
  }

  kern_return_t Watch(io_service_t service, Witness& witness, io_object_t* number,
                      const char* kind = kIOGeneralInterest) {
    return IOServiceAddInterestNotification(port_->Get(), service, kind, Witness::OnMessage, &witness, number);
  }

  Object Watch(const Object& service, Witness& witness) {
    io_object_t number = 0;
    EXPECT_EQ(Watch(service.Number(), witness, &number), kIOReturnSuccess);
    return Object(number);
  }

  IONotificationPortRef ThePort() const { return port_->Get(); }

 private:
  std::unique_ptr<Port> port_ = std::make_unique<Port>();
};

/// Needs a driver that sends a message when it is told to.
class InterestOfACamera : public Interest {};

TEST_F(Interest, AnUnpluggedCameraIsToldOnceWithoutArming) {
  const int camera = Plug();
  const Object service = FindCamera();
  Witness witness;
  const Object watch = Watch(service, witness);
  Unplug(camera);
  EXPECT_THAT(witness.types, IsEmpty());
  RunPending();
  RunPending();
  EXPECT_THAT(witness.types, ElementsAre(0xE0000010u));
}

TEST_F(InterestOfACamera, EveryMessageArrivesInOrder) {
  const int camera = Plug();
  const Object service = FindCamera();
  Witness witness;
  const Object watch = Watch(service, witness);
  TheMachine().Announce(camera, kIOMessageServiceIsSuspended);
  TheMachine().Announce(camera, kPowerMessage);
  TheMachine().Announce(camera, kIOMessageServiceIsResumed);
  Unplug(camera);
  RunPending();
  EXPECT_THAT(witness.types, ElementsAre(0xE0000020u, kPowerMessage, 0xE0000030u, 0xE0000010u));
}

/// What a driver need not do: a driver of another make may open its own service at other moments, or never.
class InterestDriverChooses : public Interest {};

TEST_F(InterestDriverChooses, AnUnplugOpensAndClosesNothing) {
  const int camera = Plug();
  const Object service = FindCamera();
  Witness witness;
  const Object watch = Watch(service, witness);
  Unplug(camera);
  RunPending();
  EXPECT_THAT(witness.choices, IsEmpty());
}

TEST_F(InterestDriverChooses, OpeningAndClosingAreToldToo) {
  Plug();
  const Object service = FindCamera();
  Witness witness;
  const Object watch = Watch(service, witness);
  io_connect_t connection = 0;
  ASSERT_EQ(IOServiceOpen(service.Number(), mach_task_self(), 0, &connection), kIOReturnSuccess);
  IOServiceClose(connection);
  RunPending();
  EXPECT_THAT(witness.choices, ElementsAre(0xE0000101u, 0xE0000110u));
}

TEST_F(InterestOfACamera, BeforeTheEndTheServiceIsTheHandleThatIsHeld) {
  const int camera = Plug();
  const Object service = FindCamera();
  Witness witness;
  const Object watch = Watch(service, witness);
  TheMachine().Announce(camera, kPowerMessage);
  RunPending();
  EXPECT_THAT(witness.services, ElementsAre(service.Number()));
}

TEST_F(Interest, AtTheEndTheServiceOfTheCallCanBeReadButNeedNotBeTheHeldOne) {
  const int camera = Plug({.serial = "K5"});
  const Object service = FindCamera();
  Witness witness;
  const Object watch = Watch(service, witness);
  Unplug(camera);
  RunPending();
  ASSERT_EQ(witness.services.size(), 1u);
  EXPECT_NE(witness.services[0], 0u);
  EXPECT_EQ(witness.serial, "K5");
}

TEST_F(InterestOfACamera, TheServiceOfTheCallEndsWithTheCall) {
  const int camera = Plug();
  Witness witness;
  Object watch;
  {
    const Object service = FindCamera();
    watch = Watch(service, witness);
  }
  TheMachine().Announce(camera, kPowerMessage);
  RunPending();
  ASSERT_EQ(witness.services.size(), 1u);
  EXPECT_EQ(IOObjectRelease(witness.services[0]), KERN_INVALID_NAME);
}

TEST_F(Interest, OnlyTheWatchedServiceIsHeard) {
  Plug({.serial = "K1"});
  const Object service = FindCamera();
  Witness witness;
  const Object watch = Watch(service, witness);
  Unplug(Plug({.serial = "K2"}));
  RunPending();
  EXPECT_THAT(witness.types, IsEmpty());
}

TEST_F(Interest, AReleasedRegistrationHearsNothing) {
  const int camera = Plug();
  const Object service = FindCamera();
  Witness witness;
  Object watch = Watch(service, witness);
  Unplug(camera);
  watch = Object();
  RunPending();
  EXPECT_THAT(witness.types, IsEmpty());
}

TEST_F(InterestOfACamera, ACallbackMayReleaseItsOwnRegistration) {
  const int camera = Plug();
  const Object service = FindCamera();
  Object watch;
  const auto release = [](void* own, io_service_t, uint32_t, void*) { *static_cast<Object*>(own) = Object(); };
  io_object_t number = 0;
  ASSERT_EQ(IOServiceAddInterestNotification(ThePort(), service.Number(), kIOGeneralInterest, release, &watch, &number),
            kIOReturnSuccess);
  watch = Object(number);
  TheMachine().Announce(camera, kPowerMessage);
  Unplug(camera);
  RunPending();
  EXPECT_FALSE(watch);
}

TEST_F(Interest, EachRegistrationHearsForItself) {
  const int camera = Plug();
  const Object service = FindCamera();
  Witness first;
  Witness second;
  const Object firstWatch = Watch(service, first);
  const Object secondWatch = Watch(service, second);
  EXPECT_NE(firstWatch.Number(), secondWatch.Number());
  Unplug(camera);
  RunPending();
  EXPECT_EQ(first.types.size(), 1u);
  EXPECT_EQ(second.types.size(), 1u);
}

TEST_F(Interest, AnUnknownKindIsUnsupported) {
  Plug();
  const Object service = FindCamera();
  Witness witness;
  io_object_t number = kUntouched;
  EXPECT_EQ(Watch(service.Number(), witness, &number, "NoSuchInterest"), kIOReturnUnsupported);
  EXPECT_EQ(number, kUntouched);
}

TEST_F(Interest, ADeadHandleCannotBeWatched) {
  const int camera = Plug();
  const Object service = FindCamera();
  Unplug(camera);
  Witness witness;
  io_object_t number = kUntouched;
  EXPECT_EQ(Watch(service.Number(), witness, &number), MACH_SEND_INVALID_DEST);
  EXPECT_EQ(Watch(0, witness, &number), MACH_SEND_INVALID_DEST);
  EXPECT_EQ(number, kUntouched);
}

TEST_F(Interest, AServiceThatHasEndedCannotBeWatchedThroughAFreshHandleEither) {
  const int camera = Plug();
  io_iterator_t number = 0;
  ASSERT_EQ(IOServiceGetMatchingServices(MACH_PORT_NULL, MatchingCameras(), &number), kIOReturnSuccess);
  const Object iterator(number);
  Unplug(camera);
  const Object service = NextOf(iterator);
  ASSERT_TRUE(service);
  Witness witness;
  io_object_t watch = kUntouched;
  EXPECT_EQ(Watch(service.Number(), witness, &watch), kIOReturnUnsupported);
  EXPECT_EQ(watch, kUntouched);
}

}  // namespace
}  // namespace conformance
