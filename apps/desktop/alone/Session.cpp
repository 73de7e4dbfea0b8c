// Where the system starts an application once, and Qt follows its colours.
#include "apps/desktop/Session.h"

namespace desktop {

std::unique_ptr<QObject> OnlyInstance(std::function<void()>) {
  return std::make_unique<QObject>();
}

void FollowAppearance() {}

}  // namespace desktop
