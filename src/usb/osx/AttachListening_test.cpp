#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "OsxCameraError.h"
#include "testing/FakeCalls.h"
#include "testing/OsxCameraState.h"

// Being told of cameras that are attached, and of those that the system attached without the camera's driver.

namespace {

using Log = std::vector<std::string>;

// What a callback saw; its own address is the context.
struct Listener {
  static void Attached(boost::shared_ptr<Camera> camera, void* context) {
    auto& self = *static_cast<Listener*>(context);
    fake::Get().Log("Attached");
    ++self.calls;
    EXPECT_FALSE(camera->IsOpen());
    if (self.keeps) self.cameras.push_back(camera);
  }
  static void AttachedToo(boost::shared_ptr<Camera>, void* context) { static_cast<Listener*>(context)->others++; }
  static void Bad(void* context) {
    fake::Get().Log("Bad camera");
    ++static_cast<Listener*>(context)->calls;
  }
  bool keeps = false;
  int calls = 0;
  int others = 0;
  std::vector<boost::shared_ptr<Camera>> cameras;
};

// The text before the call stack.
template <typename Action>
std::string ErrorOf(Action action) {
  try {
    action();
  } catch (const OsxCameraError& error) {
    return std::string(error.what()).substr(0, std::string(error.what()).find('\n'));
  }
  return "no error";
}

class AttachListening : public fake::Test {
 protected:
  void Listen() { OsxCamera::ListenForOsxCameraAttach(Listener::Attached, &listener_); }
  // As the run loop does when services have come.
  void Deliver(std::size_t index, const std::vector<io_service_t>& services) {
    const fake::Matching& matching = framework().matchings.at(index);
    framework().iterators[matching.iterator].assign(services.begin(), services.end());
    matching.handler(matching.context, matching.iterator);
  }
  Listener listener_;
};

TEST_F(AttachListening, ANullCallbackRegistersNothingAndMakesNoPort) {
  OsxCamera::ListenForOsxCameraAttach(nullptr, &listener_);
  OsxCamera::ListenForOsxBadCameraAttach(nullptr, &listener_);
  EXPECT_EQ(log(), Log{});
}

TEST_F(AttachListening, MakesThePortAndRegistersForEachDriverInOrder) {
  Listen();
  EXPECT_EQ(log(), (Log{"CreatePort", "AddSource current run loop, source of the port, kCFRunLoopDefaultMode",
                        "Notify com_kelva_Glimmer", "Next none", "Notify com_kelva_Glimmer_ms", "Next none"}));
  EXPECT_EQ(framework().matchings[0].context, &listener_);
  EXPECT_EQ(framework().matchings[1].context, &listener_);
}

TEST_F(AttachListening, KeepsTheIteratorsOfItsNotifications) {
  Listen();
  EXPECT_EQ(framework().OpenHandles(), (std::map<std::string, int>{{"notification of com_kelva_Glimmer", 1},
                                                                   {"notification of com_kelva_Glimmer_ms", 1}}));
}

TEST_F(AttachListening, ReportsCamerasThatArePresentBeforeItReturns) {
  AddCamera("two", "com_kelva_Glimmer_ms");
  AddCamera("one");
  Listen();
  EXPECT_EQ(listener_.calls, 2);
}

TEST_F(AttachListening, RequiresNoVendor) {
  AddCamera("other", "com_kelva_Glimmer", "Others");
  Listen();
  EXPECT_EQ(listener_.calls, 1);
}

TEST_F(AttachListening, ACameraThatIsNotKeptIsDestroyedBeforeTheNextIsTaken) {
  AddCamera("one");
  AddCamera("two");
  Listen();
  EXPECT_EQ(Log(log().begin() + 2, log().begin() + 10),
            (Log{"Notify com_kelva_Glimmer", "Next one", "Attached", "Release one", "Next two", "Attached",
                 "Release two", "Next none"}));
}

TEST_F(AttachListening, ACameraMayBeKept) {
  listener_.keeps = true;
  AddCamera("one");
  Listen();
  ASSERT_EQ(listener_.cameras.size(), 1u);
  EXPECT_EQ(listener_.cameras[0].use_count(), 1);
  EXPECT_TRUE(listener_.cameras[0]->CompareSn("one"));
}

TEST_F(AttachListening, ReportsCamerasThatComeLater) {
  Listen();
  const io_service_t one = AddCamera("one");
  const io_service_t two = AddCamera("two");
  Deliver(0, {one, two});
  EXPECT_EQ(listener_.calls, 2);
  Deliver(1, {one});
  EXPECT_EQ(listener_.calls, 3);
}

TEST_F(AttachListening, ALaterRegistrationReplacesTheCallbackAndReportsTwice) {
  Listen();
  OsxCamera::ListenForOsxCameraAttach(Listener::AttachedToo, &listener_);
  EXPECT_EQ(framework().ports, 1);
  ASSERT_EQ(framework().matchings.size(), 4u);
  Deliver(0, {AddCamera("one")});
  Deliver(2, {AddCamera("two")});
  EXPECT_EQ(listener_.calls, 0);
  EXPECT_EQ(listener_.others, 2);
}

TEST_F(AttachListening, EachRegistrationKeepsItsOwnContext) {
  Listener second;
  Listen();
  OsxCamera::ListenForOsxCameraAttach(Listener::Attached, &second);
  Deliver(0, {AddCamera("one")});
  EXPECT_EQ(listener_.calls, 1);
  EXPECT_EQ(second.calls, 0);
}

// A callback that throws at its first `failures` calls; its own address is the context.
struct ThrowingListener {
  static void Attached(boost::shared_ptr<Camera>, void* context) { Bad(context); }
  static void Bad(void* context) {
    auto& self = *static_cast<ThrowingListener*>(context);
    if (++self.calls <= self.failures) throw std::runtime_error(std::to_string(self.calls));
  }
  int failures = 1;
  int calls = 0;
};

template <typename Action>
std::string RuntimeErrorOf(Action action) {
  try {
    action();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "no error";
}

TEST_F(AttachListening, AnExceptionOutOfACallbackGoesOnOnceTheOthersAreReported) {
  ThrowingListener listener{.failures = 2};
  AddCamera("one");
  AddCamera("two");
  AddCamera("three");
  EXPECT_EQ(RuntimeErrorOf([&] { OsxCamera::ListenForOsxCameraAttach(ThrowingListener::Attached, &listener); }), "1");
  EXPECT_EQ(listener.calls, 3);
  EXPECT_EQ(log().back(), "Next none");
}

TEST_F(AttachListening, AnExceptionAtALaterAttachLeavesTheNotificationArmed) {
  ThrowingListener listener{.failures = 0};
  OsxCamera::ListenForOsxCameraAttach(ThrowingListener::Attached, &listener);
  listener.failures = 1;
  EXPECT_EQ(RuntimeErrorOf([&] { Deliver(0, {AddCamera("one"), AddCamera("two")}); }), "1");
  EXPECT_EQ(listener.calls, 2);
  EXPECT_TRUE(framework().iterators[framework().matchings[0].iterator].empty());
}

TEST_F(AttachListening, WithoutAPortThrowsAndKeepsTheCallback) {
  framework().refusesPort = true;
  EXPECT_EQ(ErrorOf([&] { Listen(); }), "OsxCameraError: IONotificationPortCreate() failed.");
  EXPECT_EQ(ErrorOf([&] { OsxCamera::ListenForOsxBadCameraAttach(Listener::Bad, &listener_); }),
            "OsxCameraError: IONotificationPortCreate() failed.");
  EXPECT_EQ(fake::CameraCallback(), nullptr);
  EXPECT_EQ(fake::BadCameraCallback(), nullptr);
  framework().refusesPort = false;
  Listen();
  EXPECT_EQ(framework().ports, 1);
}

TEST_F(AttachListening, ARefusedRegistrationThrowsWhateverTheSwitchSays) {
  Camera::throwExceptions_ = false;
  framework().results["IOServiceAddMatchingNotification"] = {kIOReturnError};
  EXPECT_EQ(ErrorOf([&] { Listen(); }), "OsxCameraError: IOServiceAddMatchingNotification() failed.");
  Camera::throwExceptions_ = true;
  EXPECT_TRUE(framework().matchings.empty());
  EXPECT_EQ(fake::CameraCallback(), &Listener::Attached);
}

TEST_F(AttachListening, ARefusedSecondRegistrationLeavesTheFirstInForce) {
  AddCamera("one");
  framework().results["IOServiceAddMatchingNotification"] = {KERN_SUCCESS, kIOReturnError};
  EXPECT_EQ(ErrorOf([&] { Listen(); }), "OsxCameraError: IOServiceAddMatchingNotification() failed.");
  EXPECT_EQ(listener_.calls, 1);
  Deliver(0, {AddCamera("two")});
  EXPECT_EQ(listener_.calls, 2);
}

TEST_F(AttachListening, ThePortIsMadeOnce) {
  OsxCamera::SetupNotifyPort();
  OsxCamera::SetupNotifyPort();
  Listen();
  OsxCamera::ListenForOsxBadCameraAttach(Listener::Bad, &listener_);
  EXPECT_EQ(framework().ports, 1);
  EXPECT_EQ(
      std::count(log().begin(), log().end(), "AddSource current run loop, source of the port, kCFRunLoopDefaultMode"),
      1);
}

using Properties = std::map<std::string, std::string>;
const Properties kBad = {{"Vendor Identification", "Kelva"}, {"Product Revision Level", "Q42"}};

class BadCameraListening : public AttachListening {
 protected:
  // A compact-disc service whose grandparent has these properties.
  io_service_t AddDisc(const Properties& properties) {
    const io_object_t grandparent = framework().Add({"grandparent", "", 0, properties});
    const io_object_t parent = framework().Add({"parent", "", grandparent, kBad});
    return framework().Add({"disc", "IOCompactDiscServices", parent, kBad});
  }
  void ListenForBad() { OsxCamera::ListenForOsxBadCameraAttach(Listener::Bad, &listener_); }
  ~BadCameraListening() override {
    EXPECT_EQ(framework().OpenHandles(), (std::map<std::string, int>{{"notification of IOCompactDiscServices", 1}}));
  }
};

TEST_F(BadCameraListening, RegistersForCompactDiscServicesOnly) {
  ListenForBad();
  EXPECT_EQ(log(), (Log{"CreatePort", "AddSource current run loop, source of the port, kCFRunLoopDefaultMode",
                        "Notify IOCompactDiscServices", "Next none"}));
  EXPECT_EQ(framework().matchings[0].context, &listener_);
}

TEST_F(BadCameraListening, LooksAtTheGrandparentTheVendorFirst) {
  AddDisc(kBad);
  ListenForBad();
  EXPECT_EQ(listener_.calls, 1);
  ASSERT_EQ(log().size(), 15u);
  EXPECT_EQ(Log(log().begin() + 3, log().begin() + 10),
            (Log{"Next disc", "Parent of disc", "Parent of parent", "Property Vendor Identification of grandparent",
                 "Property Product Revision Level of grandparent", "Equal Kelva Kelva", "Equal Q42 Q42"}));
  EXPECT_THAT(Log(log().begin() + 10, log().begin() + 12),
              testing::UnorderedElementsAre("Release parent", "Release grandparent"));
  EXPECT_EQ(Log(log().begin() + 12, log().end()), (Log{"Bad camera", "Release disc", "Next none"}));
}

TEST_F(BadCameraListening, ReportsDiscsThatComeLater) {
  ListenForBad();
  Deliver(0, {AddDisc(kBad), AddDisc({}), AddDisc(kBad)});
  EXPECT_EQ(listener_.calls, 2);
}

TEST_F(BadCameraListening, PassesOverEveryOtherDisc) {
  AddDisc({{"Vendor Identification", "Kelva"}, {"Product Revision Level", "Q43"}});
  AddDisc({{"Vendor Identification", "Kelva"}, {"Product Revision Level", "q42"}});
  AddDisc({{"Vendor Identification", "Others"}, {"Product Revision Level", "Q42"}});
  AddDisc({{"Vendor Identification", "Kelva"}});
  AddDisc({{"Product Revision Level", "Q42"}});
  AddDisc({});
  ListenForBad();
  EXPECT_EQ(listener_.calls, 0);
}

TEST_F(BadCameraListening, ComparesTheRevisionOnlyWhenTheVendorMatched) {
  AddDisc({{"Vendor Identification", "Others"}, {"Product Revision Level", "Q42"}});
  ListenForBad();
  EXPECT_EQ(std::count(log().begin(), log().end(), "Equal Q42 Q42"), 0);
}

TEST_F(BadCameraListening, PassesOverADiscWithoutAGrandparent) {
  framework().Add({"orphan", "IOCompactDiscServices", 0, kBad});
  const io_object_t parent = framework().Add({"parent", "", 0, kBad});
  framework().Add({"disc", "IOCompactDiscServices", parent, kBad});
  ListenForBad();
  EXPECT_EQ(listener_.calls, 0);
}

TEST_F(BadCameraListening, WithoutACallbackReleasesTheServiceAndAsksNothing) {
  ListenForBad();
  log().clear();
  fake::BadCameraCallback() = nullptr;
  Deliver(0, {AddDisc(kBad)});
  EXPECT_EQ(log(), (Log{"Next disc", "Release disc", "Next none"}));
}

TEST_F(BadCameraListening, AnExceptionOutOfACallbackGoesOnOnceTheOthersAreReported) {
  ThrowingListener listener;
  AddDisc(kBad);
  AddDisc(kBad);
  EXPECT_EQ(RuntimeErrorOf([&] { OsxCamera::ListenForOsxBadCameraAttach(ThrowingListener::Bad, &listener); }), "1");
  EXPECT_EQ(listener.calls, 2);
}

TEST_F(BadCameraListening, ARefusedRegistrationThrows) {
  framework().results["IOServiceAddMatchingNotification"] = {kIOReturnError};
  EXPECT_EQ(ErrorOf([&] { ListenForBad(); }), "OsxCameraError: IOServiceAddMatchingNotification() failed.");
  ListenForBad();
}

}  // namespace
