#ifndef KELVA_APPS_DESKTOP_SESSION_H_
#define KELVA_APPS_DESKTOP_SESSION_H_

#include <QObject>
#include <functional>
#include <memory>

namespace desktop {

/// One window for each user's session: `raise` is called on the thread of the window, as long as the result lives, when the program
/// is started again and this window is to be shown. Null when another one was there, which has been asked to show its window. Where
/// the system sees to that, and where there is no session bus, each is the only one.
std::unique_ptr<QObject> OnlyInstance(std::function<void()> raise);

/// Follows the user's wish for light or dark colours where Qt does not do so by itself. Returns at once; the colours change when
/// the desktop has answered, and again when the wish changes.
void FollowAppearance();

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_SESSION_H_
