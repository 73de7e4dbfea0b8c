#ifndef KELVA_UI_LINUX_KELVA_HELPER_OPENER_TESTING_DIRECT_PEER_H_
#define KELVA_UI_LINUX_KELVA_HELPER_OPENER_TESTING_DIRECT_PEER_H_

#include <gio/gio.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <functional>
#include <string>
#include <thread>

#include "src/ui/linux/KelvaHelper/opener/GObjects.h"

namespace opener {

/// Long enough for a loaded machine; a test that passes never waits for it.
inline constexpr int kLongMs = 20000;

inline std::string Printed(GVariant* value) {
  char* const text = g_variant_print(value, FALSE);
  std::string printed = text;
  g_free(text);
  return printed;
}

/// For tests: one object with one interface at the far end of a direct connection, on a thread of its own. `answer` is called
/// there for each method call, and answers it.
class DirectPeer {
 public:
  using Answer = std::function<void(GDBusConnection*, GVariant*, GDBusMethodInvocation*)>;

  DirectPeer(const char* interface, const char* path, Answer answer)
      : interface_(interface), path_(path), answer_(std::move(answer)) {
    int ends[2];
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    thread_ = std::thread([this, end = ends[1]] { Serve(end); });
    connection_ = Connect(ends[0], nullptr);
  }
  DirectPeer(const DirectPeer&) = delete;
  DirectPeer& operator=(const DirectPeer&) = delete;
  ~DirectPeer() {
    g_main_context_invoke(context_, Quit, loop_);
    thread_.join();
    g_main_loop_unref(loop_);
    g_main_context_unref(context_);
  }

  /// This end.
  GDBusConnection* Connection() const { return connection_.get(); }

 private:
  /// One end; the one with a guid is the serving end, which takes no message before it is told to. (A request that arrives
  /// while that end is being set up would be dropped without an answer.)
  static Object<GDBusConnection> Connect(int descriptor, const char* guid) {
    const Object<GSocket> socket(g_socket_new_from_fd(descriptor, nullptr));
    const Object<GSocketConnection> stream(g_socket_connection_factory_create_connection(socket.get()));
    const int flags = guid == nullptr ? G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT
                                      : G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_SERVER |
                                            G_DBUS_CONNECTION_FLAGS_DELAY_MESSAGE_PROCESSING;
    return Object<GDBusConnection>(g_dbus_connection_new_sync(
        G_IO_STREAM(stream.get()), guid, static_cast<GDBusConnectionFlags>(flags), nullptr, nullptr, nullptr));
  }

  void Serve(int descriptor) {
    g_main_context_push_thread_default(context_);
    char* guid = g_dbus_generate_guid();
    const Object<GDBusConnection> connection = Connect(descriptor, guid);
    g_free(guid);
    GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(interface_, nullptr);
    GDBusInterfaceVTable table = {};
    table.method_call = OnCall;
    g_dbus_connection_register_object(connection.get(), path_, node->interfaces[0], &table, this, nullptr, nullptr);
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
    static_cast<DirectPeer*>(self)->answer_(connection, parameters, invocation);
  }

  const char* interface_;
  const char* path_;
  Answer answer_;
  GMainContext* context_ = g_main_context_new();
  GMainLoop* loop_ = g_main_loop_new(context_, FALSE);
  Object<GDBusConnection> connection_;
  std::thread thread_;
};

}  // namespace opener

#endif  // KELVA_UI_LINUX_KELVA_HELPER_OPENER_TESTING_DIRECT_PEER_H_
