#ifndef KELVA_APPS_KELVA_VERBS_HELP_VERBS_H_
#define KELVA_APPS_KELVA_VERBS_HELP_VERBS_H_

#include "apps/commandline/Verb.h"

namespace apps {

/// Whether a verb only explains the tool: it runs where there is neither a camera nor anything to look for one with.
bool NeedsNoCamera(const Verb& verb);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_HELP_VERBS_H_
