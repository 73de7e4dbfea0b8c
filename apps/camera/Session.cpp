// Opens the camera that a command means, and explains why it cannot.

#include "apps/camera/Session.h"

#include <utility>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"

namespace apps {
namespace {

bool IsStillAttached(Context& context, const std::string& serial) {
  for (const AttachedCamera& camera : FindAttached(context.diversion)) {
    if (camera.facts.serial == serial) return true;
  }
  return false;
}

Failure CannotOpen(Context& context, const std::string& serial) {
  const std::string name = serial.empty() ? "The camera" : "Camera " + Printable(serial);
  if (!IsStillAttached(context, serial)) {
    return Failure(ExitCode::kGone, name + " went away before it could be opened; plug it in again.");
  }
  const std::string holders = context.holdersOf ? context.holdersOf(serial) : "";
  if (!holders.empty()) {
    return Failure(ExitCode::kBusy,
                   name + " is held by " + Printable(holders) + "; wait until it has finished, or close it.");
  }
  return Failure(ExitCode::kBusy,
                 name +
                     " is attached but cannot be opened: another program holds it, or this user may not use it; "
                     "`kelva doctor` says which and what to do.");
}

AttachedCamera WantedCamera(Context& context, std::string doing) {
  context.Doing(std::move(doing));
  return Choose(FindAttached(context.diversion), WantedSerial(context.call.Value("serial")));
}

}  // namespace

Session::Session(Context& context, std::string doing) : Session(context, WantedCamera(context, std::move(doing))) {}

Session::Session(Context& context, AttachedCamera chosen) : chosen_(std::move(chosen)) {
  context.stop.Check();
  if (context.trace != nullptr) {
    chosen_.camera = context.trace->Around(chosen_.camera, DeviceOf(chosen_.facts));
  }
  if (!chosen_.camera->Open()) throw CannotOpen(context, chosen_.facts.serial);
}

Session::~Session() {
  chosen_.camera->Close();
}

Trace::Device DeviceOf(const RegistryCamera& facts) {
  return {facts.serial, facts.vendor, facts.product, facts.revision, facts.driver};
}

Json CameraResult(const Session& session) {
  return Json::Object().SetBytes("serial", session.Facts().serial);
}

}  // namespace apps
