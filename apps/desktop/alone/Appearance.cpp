// Where Qt follows the system's colours.
#include "apps/desktop/Appearance.h"

namespace desktop {

void FollowAppearance() {}

}  // namespace desktop
