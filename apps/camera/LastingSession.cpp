// Follows one camera through restarts, for firmware upgrades and `kelva reboot`.

#include "apps/camera/LastingSession.h"

#include <chrono>
#include <thread>

#include "apps/commandline/Failure.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

using namespace std::chrono_literals;

constexpr auto kPause = 200ms;

}  // namespace

LastingSession::LastingSession(Context& context)
    : context_(context), serial_(WantedSerial(context.call.Value("serial"))) {
  Open(WaitBusy(context));
  if (!session_->Facts().serial.empty()) serial_ = session_->Facts().serial;
}

void LastingSession::Open(std::chrono::milliseconds patience) {
  session_.emplace(context_, Choose(FindAttached(context_.diversion), serial_), patience);
}

bool LastingSession::IsReady() {
  try {
    if (session_) return Device().IsReady();
  } catch (const CameraTransferError&) {
    session_.reset();
  }
  try {
    Open(0ms);  // who asks here asks again
  } catch (const Failure&) {
    // The camera is not attached yet, or cannot be opened yet.
  }
  return false;
}

void LastingSession::WaitUntilReady() {
  while (!IsReady()) {
    context_.stop.Check();
    std::this_thread::sleep_for(kPause);
  }
}

bool LastingSession::HasRestarted(int commands) {
  if (!IsReady()) return true;
  try {
    return Device().GetDoneCmdCount() < commands;
  } catch (const CameraTransferError&) {
    session_.reset();
    return true;
  }
}

void LastingSession::WaitUntilGone(int commands) {
  constexpr auto kPatience = 10s;
  const auto until = std::chrono::steady_clock::now() + kPatience;
  while (!HasRestarted(commands)) {
    if (std::chrono::steady_clock::now() >= until) {
      throw Failure(
          ExitCode::kFailed,
          "The camera accepted the command to restart, but is still there and ready after ten seconds; switch it "
          "off and on instead.");
    }
    context_.stop.Check();
    std::this_thread::sleep_for(kPause);
  }
}

}  // namespace apps
