#include "src/ui/linux/KelvaHelper/opener/SessionScope.h"

#include <gio/gio.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "base/testing/ScratchFolder.h"
#include "src/ui/linux/KelvaHelper/opener/ScopeName.h"
#include "src/ui/linux/KelvaHelper/opener/testing/DirectPeer.h"

namespace opener {
namespace {

constexpr char kInterface[] =
    "<node><interface name='org.freedesktop.systemd1.Manager'>"
    "<method name='StartTransientUnit'><arg type='s' direction='in'/><arg type='s' direction='in'/>"
    "<arg type='a(sv)' direction='in'/><arg type='a(sa(sv))' direction='in'/><arg type='o' direction='out'/></method>"
    "</interface></node>";

/// How the stand-in of the service manager answers.
enum class Behaviour { kDone, kAnotherJobFirst, kFailed, kRefuse, kSilent };

/// A stand-in of the user's service manager.
class Manager {
 public:
  explicit Manager(Behaviour behaviour) : behaviour_(behaviour) {}

  GDBusConnection* Connection() const { return peer_.Connection(); }
  const std::string& Request() const { return request_; }

 private:
  void Answer(GDBusConnection* connection, GVariant* parameters, GDBusMethodInvocation* invocation) {
    request_ = Printed(parameters);
    if (behaviour_ == Behaviour::kRefuse) {
      g_dbus_method_invocation_return_dbus_error(invocation, "org.example.Refused", "not today");
      return;
    }
    // The job may be over before the answer that names it has been sent.
    if (behaviour_ == Behaviour::kAnotherJobFirst) EndJob(connection, "/job/6", "failed");
    if (behaviour_ != Behaviour::kSilent) {
      EndJob(connection, "/job/7", behaviour_ == Behaviour::kFailed ? "failed" : "done");
    }
    g_dbus_method_invocation_return_value(invocation, g_variant_new("(o)", "/job/7"));
  }

  static void EndJob(GDBusConnection* connection, const char* job, const char* result) {
    g_dbus_connection_emit_signal(connection, nullptr, "/org/freedesktop/systemd1", "org.freedesktop.systemd1.Manager",
                                  "JobRemoved", g_variant_new("(uoss)", 7U, job, "some.scope", result), nullptr);
  }

  Behaviour behaviour_;
  std::string request_;
  DirectPeer peer_{kInterface, "/org/freedesktop/systemd1",
                   [this](GDBusConnection* connection, GVariant* parameters, GDBusMethodInvocation* invocation) {
                     Answer(connection, parameters, invocation);
                   }};
};

TEST(SessionScope, AsksForAScopeThatHoldsThisProcess) {
  const Manager manager(Behaviour::kDone);
  EXPECT_EQ(MoveIntoScope(manager.Connection(), "com.kelva.Desktop", kLongMs), "");
  const std::string process = std::to_string(::getpid());
  EXPECT_EQ(manager.Request(),
            "('app-kelva-com.kelva.Desktop-" + process +
                ".scope', 'fail', [('Description', <'com.kelva.Desktop'>), ('Slice', <'app.slice'>), "
                "('CollectMode', <'inactive-or-failed'>), ('PIDs', <[uint32 " +
                process + "]>)], [])");
}

TEST(SessionScope, WaitsForItsOwnJobAndNotForAnother) {
  const Manager manager(Behaviour::kAnotherJobFirst);
  EXPECT_EQ(MoveIntoScope(manager.Connection(), "com.kelva.Desktop", kLongMs), "");
}

TEST(SessionScope, JobThatFailsIsTheReason) {
  const Manager manager(Behaviour::kFailed);
  EXPECT_EQ(MoveIntoScope(manager.Connection(), "com.kelva.Desktop", kLongMs), "its job ended with \"failed\"");
}

TEST(SessionScope, RefusalIsTheReason) {
  const Manager manager(Behaviour::kRefuse);
  EXPECT_NE(MoveIntoScope(manager.Connection(), "com.kelva.Desktop", kLongMs).find("not today"), std::string::npos);
}

TEST(SessionScope, ManagerThatNeverFinishesIsNotWaitedForLongerThanAllowed) {
  const Manager manager(Behaviour::kSilent);
  constexpr int kAllowedMs = 2000;  // the answers that do come take their time on a loaded machine
  EXPECT_EQ(MoveIntoScope(manager.Connection(), "com.kelva.Desktop", kAllowedMs), "its job ended with \"timeout\"");
}

TEST(SessionScope, ServiceManagerIsKnownByItsFolderInTheRunTimeFolder) {
  const base::ScratchFolder scratch;
  const std::filesystem::path& folder = scratch.Path();
  EXPECT_FALSE(HasServiceManager(""));
  EXPECT_FALSE(HasServiceManager(folder));
  std::filesystem::create_directory(folder / "systemd");
  EXPECT_TRUE(HasServiceManager(folder));
}

TEST(SessionScope, WithoutABusOrAManagerThereIsNoScopeAndNoComplaint) {
  testing::internal::CaptureStderr();
  EnterScope(nullptr, "com.kelva.Desktop");
  const Manager manager(Behaviour::kDone);
  ::setenv("XDG_RUNTIME_DIR", "/nonexistent", 1);
  EnterScope(manager.Connection(), "com.kelva.Desktop");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(manager.Request(), "");
}

TEST(SessionScope, RefusalIsOneLineAndTheLaunchGoesOn) {
  const base::ScratchFolder scratch;
  std::filesystem::create_directory(scratch.Path() / "systemd");
  ::setenv("XDG_RUNTIME_DIR", scratch.Path().c_str(), 1);
  const Manager manager(Behaviour::kRefuse);
  testing::internal::CaptureStderr();
  EnterScope(manager.Connection(), "com.kelva.Desktop");
  const std::string errors = testing::internal::GetCapturedStderr();
  EXPECT_EQ(errors.rfind("kelva-open: com.kelva.Desktop gets no scope of its own (", 0), 0U) << errors;
  EXPECT_NE(errors.find("not today"), std::string::npos) << errors;
}

}  // namespace
}  // namespace opener
