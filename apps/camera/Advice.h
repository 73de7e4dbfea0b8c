#ifndef KELVA_APPS_CAMERA_ADVICE_H_
#define KELVA_APPS_CAMERA_ADVICE_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "apps/commandline/ExitCode.h"

namespace apps {

/// What a failed transfer says of itself, read back from its message.
struct TransferReport {
  std::string block;       ///< the command block in hexadecimal, "c6 00 04 ..."
  std::uint32_t returned;  ///< the call's return code, a kern_return_t
  std::uint32_t status;    ///< the command's status; meaningless unless `returned` is 0
};

/// Reads a transfer error's message; nothing when it is another one.
std::optional<TransferReport> ReadTransferReport(std::string_view message);

/// How the tool ends on a failure of the camera, and the rest of the sentence that began with "Cannot ...: ".
struct Verdict {
  ExitCode code;
  std::string clause;  ///< what came back and what to do, with its full stop
};

/// The one place that turns codes into advice.
Verdict AdviceFor(const TransferReport& report);

/// The verdict on any message of the library's exceptions.
Verdict AdviceFor(std::string_view message);

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_ADVICE_H_
