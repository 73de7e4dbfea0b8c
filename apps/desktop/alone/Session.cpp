// Where the system starts an application once, and Qt follows its colours.
#include "apps/desktop/Session.h"

namespace desktop {

class SingleInstance::Door {};

SingleInstance::SingleInstance() = default;
SingleInstance::~SingleInstance() = default;
void SingleInstance::OnActivate(std::function<void()>) {}

void FollowAppearance() {}

}  // namespace desktop
