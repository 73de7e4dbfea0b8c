#include "src/ui/linux/KelvaHelper/opener/SessionScope.h"

#include <gio/gio.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <thread>

#include "base/testing/ScratchFolder.h"
#include "src/ui/linux/KelvaHelper/opener/GObjects.h"
#include "src/ui/linux/KelvaHelper/opener/ScopeName.h"

namespace opener {
namespace {

constexpr char kInterface[] =
    "<node><interface name='org.freedesktop.systemd1.Manager'>"
    "<method name='StartTransientUnit'><arg type='s' direction='in'/><arg type='s' direction='in'/>"
    "<arg type='a(sv)' direction='in'/><arg type='a(sa(sv))' direction='in'/><arg type='o' direction='out'/></method>"
    "</interface></node>";

/// How the stand-in of the service manager answers.
enum class Behaviour { kDone, kAnotherJobFirst, kFailed, kRefuse, kSilent };

/// One end of a direct connection; the one with a guid is the serving end, which takes no message before it is told to. (A
/// request that arrives while that end is being set up would be dropped without an answer.)
Object<GDBusConnection> Connect(int descriptor, const char* guid) {
  const Object<GSocket> socket(g_socket_new_from_fd(descriptor, nullptr));
  const Object<GSocketConnection> stream(g_socket_connection_factory_create_connection(socket.get()));
  const int flags = guid == nullptr ? G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT
                                    : G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_SERVER |
                                          G_DBUS_CONNECTION_FLAGS_DELAY_MESSAGE_PROCESSING;
  return Object<GDBusConnection>(g_dbus_connection_new_sync(
      G_IO_STREAM(stream.get()), guid, static_cast<GDBusConnectionFlags>(flags), nullptr, nullptr, nullptr));
}

/// A stand-in of the user's service manager at the far end of a direct connection, on a thread of its own.
class Manager {
 public:
  explicit Manager(Behaviour behaviour) : behaviour_(behaviour) {
    int ends[2];
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    thread_ = std::thread([this, end = ends[1]] { Serve(end); });
    connection_ = Connect(ends[0], nullptr);
  }
  ~Manager() {
    g_main_context_invoke(context_, Quit, loop_);
    thread_.join();
    g_main_loop_unref(loop_);
    g_main_context_unref(context_);
  }

  GDBusConnection* Connection() const { return connection_.get(); }
  const std::string& Request() const { return request_; }

 private:
  void Serve(int descriptor) {
    g_main_context_push_thread_default(context_);
    char* guid = g_dbus_generate_guid();
    const Object<GDBusConnection> connection = Connect(descriptor, guid);
    g_free(guid);
    GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(kInterface, nullptr);
    GDBusInterfaceVTable table = {};
    table.method_call = OnCall;
    g_dbus_connection_register_object(connection.get(), "/org/freedesktop/systemd1", node->interfaces[0], &table, this,
                                      nullptr, nullptr);
    g_dbus_connection_start_message_processing(connection.get());
    g_main_loop_run(loop_);
    g_dbus_node_info_unref(node);
    g_main_context_pop_thread_default(context_);
  }

  static gboolean Quit(gpointer loop) {
    g_main_loop_quit(static_cast<GMainLoop*>(loop));
    return G_SOURCE_REMOVE;
  }

  static void OnCall(GDBusConnection* connection, const char*, const char*, const char*, const char*,
                     GVariant* parameters, GDBusMethodInvocation* invocation, gpointer self) {
    static_cast<Manager*>(self)->Answer(connection, parameters, invocation);
  }

  void Answer(GDBusConnection* connection, GVariant* parameters, GDBusMethodInvocation* invocation) {
    char* text = g_variant_print(parameters, FALSE);
    request_ = text;
    g_free(text);
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
  GMainContext* context_ = g_main_context_new();
  GMainLoop* loop_ = g_main_loop_new(context_, FALSE);
  std::string request_;
  Object<GDBusConnection> connection_;
  std::thread thread_;
};

constexpr int kLong = 20000;

TEST(SessionScope, AsksForAScopeThatHoldsThisProcess) {
  const Manager manager(Behaviour::kDone);
  EXPECT_EQ(MoveIntoScope(manager.Connection(), "com.kelva.Desktop", kLong), "");
  const std::string process = std::to_string(::getpid());
  EXPECT_EQ(manager.Request(),
            "('app-kelva-com.kelva.Desktop-" + process +
                ".scope', 'fail', [('Description', <'com.kelva.Desktop'>), ('Slice', <'app.slice'>), "
                "('CollectMode', <'inactive-or-failed'>), ('PIDs', <[uint32 " +
                process + "]>)], [])");
}

TEST(SessionScope, WaitsForItsOwnJobAndNotForAnother) {
  const Manager manager(Behaviour::kAnotherJobFirst);
  EXPECT_EQ(MoveIntoScope(manager.Connection(), "com.kelva.Desktop", kLong), "");
}

TEST(SessionScope, JobThatFailsIsTheReason) {
  const Manager manager(Behaviour::kFailed);
  EXPECT_EQ(MoveIntoScope(manager.Connection(), "com.kelva.Desktop", kLong), "its job ended with \"failed\"");
}

TEST(SessionScope, RefusalIsTheReason) {
  const Manager manager(Behaviour::kRefuse);
  EXPECT_NE(MoveIntoScope(manager.Connection(), "com.kelva.Desktop", kLong).find("not today"), std::string::npos);
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

}  // namespace
}  // namespace opener
