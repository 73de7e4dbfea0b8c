#ifndef KELVA_CLI_VERBS_HELP_VERBS_H_
#define KELVA_CLI_VERBS_HELP_VERBS_H_

#include "frame/Verb.h"

namespace kelva {

/// Whether a verb only explains the tool: it runs where there is neither a camera nor anything to look for one with.
bool NeedsNoCamera(const Verb& verb);

}  // namespace kelva

#endif  // KELVA_CLI_VERBS_HELP_VERBS_H_
