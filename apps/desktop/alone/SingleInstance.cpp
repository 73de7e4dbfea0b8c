// Where the system itself starts an application once.
#include "apps/desktop/SingleInstance.h"

namespace desktop {

class SingleInstance::Door {};

SingleInstance::SingleInstance() = default;
SingleInstance::~SingleInstance() = default;
void SingleInstance::OnActivate(std::function<void()>) {}

}  // namespace desktop
