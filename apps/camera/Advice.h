#ifndef KELVA_APPS_CAMERA_ADVICE_H_
#define KELVA_APPS_CAMERA_ADVICE_H_

#include <string>
#include <string_view>

#include "apps/commandline/ExitCode.h"
#include "src/usb/osx/UserClientTransfer.h"

namespace apps {

/// How the tool ends after a failure of the camera, and the rest of the sentence "Cannot ...: ".
struct Verdict {
  ExitCode code;
  std::string clause;      ///< what came back and what to do, with its full stop
  std::string codes = "";  ///< the same for engineers: command block and numbers; empty when there are none
};

/// The clause for a camera that has gone.
inline constexpr std::string_view kGoneAdvice =
    "the camera is no longer there; plug it in again, switch it on and try again.";

/// What a failed transfer means for the person at the tool. The only place that turns codes into advice.
Verdict AdviceFor(const kelva::TransferReport& report);

/// The same for the message of any exception of the library.
Verdict AdviceFor(std::string_view message);

/// Whether the message is that of a camera that knows the command and refused what was asked for, as for a file that it
/// does not have.
bool RefusesWhatWasAsked(std::string_view message);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_ADVICE_H_
