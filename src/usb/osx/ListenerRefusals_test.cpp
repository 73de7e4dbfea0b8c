#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "Listener.h"
#include "OsxCameraError.h"
#include "testing/FakeCalls.h"
#include "testing/OsxCameraState.h"

// What a listener makes of a system that refuses, and the order in which it gives its handles back.

namespace {

using Log = std::vector<std::string>;

class ListenerRefusals : public fake::Test {
 protected:
  ~ListenerRefusals() override {
    listener_.reset();
    EXPECT_TRUE(framework().OpenHandles().empty());
    EXPECT_EQ(framework().ports, 0);
  }
  void Listen() {
    listener_.emplace(
        kelva::Listener::Functions{.attached = [this](auto, auto& serial) { log().push_back("Attached " + serial); },
                                   .lost = [this](auto, auto& serial) { log().push_back("Lost " + serial); },
                                   .badCamera = [this] { log().push_back("Bad camera"); }});
  }
  std::string ErrorOfListening() {
    try {
      Listen();
    } catch (const OsxCameraError& error) {
      return std::string(error.what()).substr(0, std::string(error.what()).find('\n'));
    }
    return "no error";
  }
  bool Heard(const std::string& line) { return std::find(log().begin(), log().end(), line) != log().end(); }
  std::optional<kelva::Listener> listener_;
};

TEST_F(ListenerRefusals, MakesItsOwnPortAndLeavesTheFixedInterfaceAlone) {
  Listen();
  EXPECT_EQ(log(), (Log{"CreatePort", "AddSource current run loop, source of the port, kCFRunLoopDefaultMode",
                        "Notify com_kelva_Glimmer", "Notify com_kelva_Glimmer_ms", "Notify IOCompactDiscServices",
                        "Next none", "Next none", "Next none"}));
  EXPECT_EQ(fake::NotifyPort(), nullptr);
  EXPECT_EQ(fake::CameraCallback(), nullptr);
  EXPECT_EQ(fake::BadCameraCallback(), nullptr);
}

TEST_F(ListenerRefusals, GivesHandlesBackBeforeThePort) {
  AddCamera("one");
  Listen();
  log().clear();
  listener_.reset();
  EXPECT_EQ(log(), (Log{"Release interest in one", "Release notification of com_kelva_Glimmer",
                        "Release notification of com_kelva_Glimmer_ms", "Release notification of IOCompactDiscServices",
                        "DestroyPort"}));
}

TEST_F(ListenerRefusals, IgnoresEveryMessageButTheEndOfTheService) {
  AddCamera("one");
  Listen();
  const fake::Interest interest = framework().interests.at(0);
  for (const unsigned int type : {0xE0000020u, 0xE0000101u, 0xE0000110u, 0u}) {
    interest.handler(interest.refCon, interest.service, type, nullptr);
  }
  EXPECT_FALSE(Heard("Lost one"));
  // Known by its own registration: the message may name another number.
  interest.handler(interest.refCon, 0, 0xE0000010, nullptr);
  EXPECT_TRUE(Heard("Lost one"));
}

// The system may have put a second message into the port's queue before the first one was handled.
TEST_F(ListenerRefusals, ASecondMessageAboutACameraThatHasGoneIsIgnored) {
  AddCamera("one");
  Listen();
  const fake::Interest interest = framework().interests.at(0);
  interest.handler(interest.refCon, interest.service, 0xE0000010, nullptr);
  log().clear();
  interest.handler(interest.refCon, interest.service, 0xE0000010, nullptr);
  EXPECT_EQ(log(), Log{});
}

TEST_F(ListenerRefusals, WithoutAPortThrows) {
  framework().refusesPort = true;
  EXPECT_EQ(ErrorOfListening(), "OsxCameraError: IONotificationPortCreate() failed.");
}

TEST_F(ListenerRefusals, ARefusedRegistrationThrowsBeforeAnythingIsReported) {
  AddCamera("one");
  framework().results["IOServiceAddMatchingNotification"] = {KERN_SUCCESS, KERN_SUCCESS, kIOReturnError};
  EXPECT_EQ(ErrorOfListening(), "OsxCameraError: IOServiceAddMatchingNotification() failed.");
  EXPECT_FALSE(Heard("Attached one"));
  EXPECT_EQ(log().back(), "DestroyPort");
}

TEST_F(ListenerRefusals, ACameraThatCannotBeWatchedIsAttachedAndLost) {
  AddCamera("one");
  framework().results["IOServiceAddInterestNotification"] = {kIOReturnUnsupported};
  Listen();
  const auto attached = std::find(log().begin(), log().end(), "Attached one");
  ASSERT_NE(attached, log().end());
  EXPECT_EQ(attached[1], "Lost one");
}

}  // namespace
