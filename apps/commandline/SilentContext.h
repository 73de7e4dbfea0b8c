#ifndef KELVA_APPS_COMMANDLINE_SILENT_CONTEXT_H_
#define KELVA_APPS_COMMANDLINE_SILENT_CONTEXT_H_

#include "apps/commandline/Context.h"

namespace apps {

/// For tests: what a command works with, where nobody listens.
struct SilentContext {
  Invocation call_;
  Output out_{-1};
  Reporter reporter_{"kelva", -1, {}};
  Stop stop_;
  StdoutDiversion diversion_;
  Context context_{call_, out_, reporter_, stop_, diversion_};
};

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_SILENT_CONTEXT_H_
