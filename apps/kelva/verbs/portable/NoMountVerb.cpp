// Where a camera cannot be mounted, there is no verb for it.
#include "apps/kelva/verbs/Verbs.h"

namespace apps {

std::span<const Verb> MountVerbs() {
  return {};
}

}  // namespace apps
