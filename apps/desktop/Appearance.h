#ifndef KELVA_APPS_DESKTOP_APPEARANCE_H_
#define KELVA_APPS_DESKTOP_APPEARANCE_H_

namespace desktop {

/// Follows the user's wish for light or dark colours where Qt does not do so by itself. Returns at once; the colours change when
/// the desktop has answered, and again when the wish changes.
void FollowAppearance();

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_APPEARANCE_H_
