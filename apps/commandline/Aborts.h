#ifndef KELVA_APPS_COMMANDLINE_ABORTS_H_
#define KELVA_APPS_COMMANDLINE_ABORTS_H_

#include <string>

namespace apps {

/// Prepares for an abort: the library ends the process when a camera sends more than it announced. The temporary files
/// are then removed, `lastWord` goes to standard error and `lastResult` to `resultFd`, and the process ends with exit
/// status 1. The texts are copied now.
void CatchAborts(const std::string& lastWord, const std::string& lastResult, int resultFd);

/// What is to be done first at an abort; replaces what was set before. It may only do what a signal handler may do.
void AtAbort(void (*action)() noexcept);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_ABORTS_H_
