#ifndef KELVA_APPS_DESKTOP_SESSION_H_
#define KELVA_APPS_DESKTOP_SESSION_H_

#include <functional>
#include <memory>

namespace desktop {

/// One window for each user's session: a program that is started again raises the window of the first. Where the system sees to
/// that, and where there is no session bus, each is the only one.
class SingleInstance {
 public:
  SingleInstance();
  ~SingleInstance();
  SingleInstance(const SingleInstance&) = delete;
  SingleInstance& operator=(const SingleInstance&) = delete;

  /// Whether another one was there, and has been asked to show its window.
  bool HasAskedAnother() const { return hasAskedAnother_; }
  /// Called on the thread of the window whenever it is to be shown.
  void OnActivate(std::function<void()> raise);

 private:
  class Door;
  std::unique_ptr<Door> door_;
  bool hasAskedAnother_ = false;
};

/// Follows the user's wish for light or dark colours where Qt does not do so by itself. Returns at once; the colours change when
/// the desktop has answered, and again when the wish changes.
void FollowAppearance();

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_SESSION_H_
