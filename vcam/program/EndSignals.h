#ifndef KELVA_VCAM_PROGRAM_END_SIGNALS_H_
#define KELVA_VCAM_PROGRAM_END_SIGNALS_H_

#include "base/FileDescriptor.h"

namespace vcam::program {

/// A descriptor that is readable once the process is asked to end (SIGTERM, SIGINT). Blocks these signals, so call it before
/// any thread is started. Ignores SIGPIPE: a reader of our output that has gone must not end a bus that others use. Throws
/// std::runtime_error when the system has no descriptor left.
base::FileDescriptor EndSignals();

}  // namespace vcam::program

#endif  // KELVA_VCAM_PROGRAM_END_SIGNALS_H_
