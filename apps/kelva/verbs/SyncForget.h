#ifndef KELVA_APPS_KELVA_VERBS_SYNC_FORGET_H_
#define KELVA_APPS_KELVA_VERBS_SYNC_FORGET_H_

#include "apps/commandline/Context.h"

namespace apps {

/// `kelva sync --forget PICTURE FOLDER`: lets files go, and fetches nothing.
ExitCode RunForget(Context& context);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_SYNC_FORGET_H_
