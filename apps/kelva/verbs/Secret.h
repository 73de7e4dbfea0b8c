#ifndef KELVA_APPS_KELVA_VERBS_SECRET_H_
#define KELVA_APPS_KELVA_VERBS_SECRET_H_

#include <string>

#include "apps/commandline/Stop.h"

namespace apps {

/// Reads one line: from the terminal, after `prompt` and without showing it, when standard input is one; otherwise the
/// first line of standard input. The line's end is cut off. From then on this process leaves no core dump, so that the secret
/// reaches no disk. Throws Failure when there is none, Stopped.
std::string ReadSecret(const std::string& prompt, const Stop& stop);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_SECRET_H_
