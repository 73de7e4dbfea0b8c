// Says which cameras come and go, in GLib's main loop. Ends with Ctrl-C.
#include <glib-unix.h>
#include <kelva/EventLoop.h>
#include <kelva/Listener.h>

#include <csignal>
#include <iostream>

namespace {

gboolean OnEvents(gint, GIOCondition, gpointer) {
  kelva::DispatchEvents();
  return G_SOURCE_CONTINUE;
}

gboolean OnTime(gpointer) {
  kelva::DispatchEvents();
  return G_SOURCE_CONTINUE;
}

gboolean OnInterrupt(gpointer loop) {
  g_main_loop_quit(static_cast<GMainLoop*>(loop));
  return G_SOURCE_REMOVE;
}

}  // namespace

int main() {
  GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
  // An exception must not pass through GLib, which is written in C: these functions throw none.
  const kelva::Listener listener({
      .attached = [](auto, auto& serial) { std::cout << serial << " attached" << std::endl; },
      .lost = [](auto, auto& serial) { std::cout << serial << " lost" << std::endl; },
      .badCamera = {},
  });
  if (const int descriptor = kelva::EventDescriptor(); descriptor >= 0) {
    g_unix_fd_add(descriptor, G_IO_IN, OnEvents, nullptr);
  } else {  // macOS
    g_timeout_add(100, OnTime, nullptr);
  }
  g_unix_signal_add(SIGINT, OnInterrupt, loop);
  g_main_loop_run(loop);
  g_main_loop_unref(loop);
}
