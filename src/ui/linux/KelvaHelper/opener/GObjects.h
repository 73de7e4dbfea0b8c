#ifndef KELVA_UI_LINUX_KELVA_HELPER_OPENER_G_OBJECTS_H_
#define KELVA_UI_LINUX_KELVA_HELPER_OPENER_G_OBJECTS_H_

#include <gio/gio.h>

#include <memory>
#include <string>

namespace opener {

struct Unreference {
  void operator()(gpointer object) const { g_object_unref(object); }
};

/// Owns one reference to a GObject.
template <typename T>
using Object = std::unique_ptr<T, Unreference>;

/// Receives a GError and frees it.
class Error {
 public:
  Error() = default;
  Error(const Error&) = delete;
  Error& operator=(const Error&) = delete;
  ~Error() { g_clear_error(&error_); }

  /// Where a GIO call puts its error; once per object.
  GError** Receive() { return &error_; }
  std::string Text() const { return error_ == nullptr ? "no reason given" : error_->message; }

 private:
  GError* error_ = nullptr;
};

}  // namespace opener

#endif  // KELVA_UI_LINUX_KELVA_HELPER_OPENER_G_OBJECTS_H_
