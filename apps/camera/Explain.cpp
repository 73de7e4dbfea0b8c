// Turns any exception into the outcome of a command.

#include "apps/camera/Explain.h"

#include <new>

#include "apps/camera/Advice.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "src/wifi/CameraError.h"
#include "src/wifi/FileReader.h"

namespace apps {

namespace {

std::string WithCodes(const Verdict& verdict) {
  return verdict.clause.substr(0, verdict.clause.size() - 1) + " [" + verdict.codes + "].";
}

}  // namespace

Outcome Explain(const std::exception& error, const Context& context) {
  return Explain(error, context.WasDoing(), context.ShowsCodes());
}

Outcome Explain(const std::exception& error, const std::string& doing, bool codes) {
  if (const auto* failure = dynamic_cast<const Failure*>(&error)) return {failure->Code(), failure->what()};
  const std::string start = "Cannot " + (doing.empty() ? "do that" : doing) + ": ";
  if (const auto* reading = dynamic_cast<const kelva::FileReadError*>(&error);
      reading != nullptr && reading->Why() == kelva::FileReadError::Reason::kCameraLost) {
    return {ExitCode::kGone, start + std::string(kGoneAdvice)};
  }
  if (dynamic_cast<const CameraError*>(&error) != nullptr) {
    const Verdict verdict = AdviceFor(std::string_view(error.what()));
    return {verdict.code, start + (codes && !verdict.codes.empty() ? WithCodes(verdict) : verdict.clause)};
  }
  if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) {
    return {ExitCode::kFailed, start + "there is not enough memory; close other programs and try again."};
  }
  return {ExitCode::kFailed, start + Printable(error.what()) + "."};
}

bool EndsAll(ExitCode code) {
  return code == ExitCode::kGone || code == ExitCode::kTimedOut;
}

}  // namespace apps
