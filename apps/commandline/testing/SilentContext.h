#ifndef KELVA_APPS_COMMANDLINE_TESTING_SILENT_CONTEXT_H_
#define KELVA_APPS_COMMANDLINE_TESTING_SILENT_CONTEXT_H_

#include "apps/commandline/Context.h"

namespace apps {

/// What a command works with, writing nowhere. A fixture derives from it.
struct SilentContext {
  explicit SilentContext(ReportStyle style = {}) : reporter_("kelva", -1, style) {}

  Invocation call_;
  Output out_{-1};
  Reporter reporter_;
  Stop stop_;
  StdoutDiversion diversion_;
  Context context_{call_, out_, reporter_, stop_, diversion_};
};

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_TESTING_SILENT_CONTEXT_H_
