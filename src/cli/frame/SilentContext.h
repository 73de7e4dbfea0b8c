#ifndef KELVA_CLI_FRAME_SILENT_CONTEXT_H_
#define KELVA_CLI_FRAME_SILENT_CONTEXT_H_

#include "frame/Context.h"

namespace kelva {

/// For tests: what a command works with, where nobody listens.
struct SilentContext {
  Invocation call_;
  Output out_{-1};
  Reporter reporter_{-1, {}};
  Stop stop_;
  StdoutDiversion diversion_;
  Context context_{call_, out_, reporter_, stop_, diversion_};
};

}  // namespace kelva

#endif  // KELVA_CLI_FRAME_SILENT_CONTEXT_H_
