// Moves the opener into a scope of its own, so that the application outlives the agent.

#include "src/ui/linux/KelvaHelper/opener/SessionScope.h"

#include <unistd.h>

#include <cstdlib>

#include "src/ui/linux/KelvaHelper/opener/GObjects.h"
#include "src/ui/linux/KelvaHelper/opener/Report.h"
#include "src/ui/linux/KelvaHelper/opener/ScopeName.h"

namespace opener {
namespace {

// A manager answers within milliseconds, and within seconds while a session starts on a busy machine. Without a scope an
// update of the agent would end the application; the person at the desk waits meanwhile.
constexpr int kScopeTimeoutMs = 5000;
constexpr char kManagerName[] = "org.freedesktop.systemd1";
constexpr char kManagerPath[] = "/org/freedesktop/systemd1";
constexpr char kManagerInterface[] = "org.freedesktop.systemd1.Manager";

/// The manager's name on a message bus; a direct connection has no names.
const char* ManagerOn(GDBusConnection* connection) {
  return g_dbus_connection_get_unique_name(connection) == nullptr ? nullptr : kManagerName;
}

/// The request for a scope that holds this process: name, mode, properties, auxiliary units.
GVariant* ScopeRequest(const std::string& desktopId) {
  const auto process = static_cast<guint32>(::getpid());
  const std::string name = ScopeName(desktopId, ::getpid());
  GVariantBuilder properties;
  g_variant_builder_init(&properties, G_VARIANT_TYPE("a(sv)"));
  g_variant_builder_add(&properties, "(sv)", "Description", g_variant_new_string(desktopId.c_str()));
  g_variant_builder_add(&properties, "(sv)", "Slice", g_variant_new_string("app.slice"));
  g_variant_builder_add(&properties, "(sv)", "CollectMode", g_variant_new_string("inactive-or-failed"));
  g_variant_builder_add(&properties, "(sv)", "PIDs",
                        g_variant_new_fixed_array(G_VARIANT_TYPE_UINT32, &process, 1, sizeof process));
  return g_variant_new("(ssa(sv)a(sa(sv)))", name.c_str(), "fail", &properties, nullptr);
}

/// A main context of this thread alone, so that only what the wait below asked for runs in it.
class PrivateContext {
 public:
  PrivateContext() : context_(g_main_context_new()) { g_main_context_push_thread_default(context_); }
  PrivateContext(const PrivateContext&) = delete;
  PrivateContext& operator=(const PrivateContext&) = delete;
  ~PrivateContext() {
    g_main_context_pop_thread_default(context_);
    g_main_context_unref(context_);
  }
  void Iterate() { g_main_context_iteration(context_, TRUE); }
  GMainContext* Get() { return context_; }

 private:
  GMainContext* context_;
};

/// Watches the manager's finished jobs, from before a job is asked for, so that none is missed.
class JobWatch {
 public:
  JobWatch(GDBusConnection* connection, int timeoutMs) : connection_(connection) {
    subscription_ =
        g_dbus_connection_signal_subscribe(connection, ManagerOn(connection), kManagerInterface, "JobRemoved",
                                           kManagerPath, nullptr, G_DBUS_SIGNAL_FLAGS_NONE, OnRemoved, this, nullptr);
    timer_ = g_timeout_source_new(static_cast<guint>(timeoutMs));
    g_source_set_callback(timer_, OnTimeout, this, nullptr);
    g_source_attach(timer_, context_.Get());
  }
  JobWatch(const JobWatch&) = delete;
  JobWatch& operator=(const JobWatch&) = delete;
  ~JobWatch() {
    g_dbus_connection_signal_unsubscribe(connection_, subscription_);
    g_source_destroy(timer_);
    g_source_unref(timer_);
  }

  /// Waits for the end of `job` and returns its result ("done" is success), or "timeout".
  std::string ResultOf(const std::string& job) {
    job_ = job;
    while (result_.empty()) context_.Iterate();
    return result_;
  }

 private:
  static void OnRemoved(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* parameters,
                        gpointer self) {
    auto* watch = static_cast<JobWatch*>(self);
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(uoss)"))) return;
    const char* job = nullptr;
    const char* result = nullptr;
    g_variant_get(parameters, "(u&o&s&s)", nullptr, &job, nullptr, &result);
    if (watch->job_ == job) watch->result_ = result;
  }
  static gboolean OnTimeout(gpointer self) {
    static_cast<JobWatch*>(self)->result_ = "timeout";
    return G_SOURCE_REMOVE;
  }

  PrivateContext context_;
  GDBusConnection* connection_;
  guint subscription_ = 0;
  GSource* timer_ = nullptr;
  std::string job_;
  std::string result_;
};

}  // namespace

bool HasServiceManager(const std::string& runtimeDirectory) {
  return !runtimeDirectory.empty() && ::access((runtimeDirectory + "/systemd").c_str(), F_OK) == 0;
}

std::string MoveIntoScope(GDBusConnection* connection, const std::string& desktopId, int timeoutMs) {
  JobWatch watch(connection, timeoutMs);
  Error error;
  GVariant* reply = g_dbus_connection_call_sync(connection, ManagerOn(connection), kManagerPath, kManagerInterface,
                                                "StartTransientUnit", ScopeRequest(desktopId), G_VARIANT_TYPE("(o)"),
                                                G_DBUS_CALL_FLAGS_NO_AUTO_START, timeoutMs, nullptr, error.Receive());
  if (reply == nullptr) return error.Text();
  const char* path = nullptr;
  g_variant_get(reply, "(&o)", &path);
  const std::string job = path;
  g_variant_unref(reply);
  const std::string result = watch.ResultOf(job);
  return result == "done" ? std::string() : "its job ended with \"" + result + "\"";
}

void EnterScope(GDBusConnection* bus, const std::string& desktopId) {
  const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
  if (bus == nullptr || !HasServiceManager(runtime == nullptr ? "" : runtime)) return;
  const std::string reason = MoveIntoScope(bus, desktopId, kScopeTimeoutMs);
  if (!reason.empty()) Complain(desktopId + " gets no scope of its own (" + reason + ") and starts without.");
}

}  // namespace opener
