// Opens the camera that a command means.

#include "apps/camera/Session.h"

#include <utility>

#include "src/wifi/Traced.h"

namespace apps {
namespace {

AttachedCamera WantedCamera(Context& context, std::string doing) {
  WaitBusy(context);  // a wrong word is said before a camera is looked for
  context.Doing(std::move(doing));
  return Choose(FindAttached(context.diversion), WantedSerial(context.call.Value("serial")));
}

// A person who waits is told that it is the camera which does not answer.
boost::shared_ptr<Camera> Watched(boost::shared_ptr<Camera> camera, Reporter& reporter) {
  return kelva::Traced(std::move(camera),
                       {.ended = [&reporter](const kelva::Exchange&) { reporter.AwaitCamera(false); },
                        .began = [&reporter](const kelva::Exchange&) { reporter.AwaitCamera(true); }});
}

}  // namespace

Session::Session(Context& context, std::string doing) : Session(context, WantedCamera(context, std::move(doing))) {}

Session::Session(Context& context, AttachedCamera chosen) : Session(context, std::move(chosen), WaitBusy(context)) {}

Session::Session(Context& context, AttachedCamera chosen, std::chrono::milliseconds patience)
    : turns_(std::make_unique<Turns>(context, std::move(chosen), patience)), chosen_(turns_->Attached()) {
  if (context.trace != nullptr) chosen_.camera = context.trace->Around(chosen_.camera, DeviceOf(chosen_.facts));
  if (context.reporter.Style().terminal) chosen_.camera = Watched(chosen_.camera, context.reporter);
}

Trace::Device DeviceOf(const RegistryCamera& facts) {
  return {facts.serial, facts.vendor, facts.product, facts.revision, facts.driver};
}

Json CameraResult(const Session& session) {
  return Json::Object().SetBytes("serial", session.Facts().serial);
}

}  // namespace apps
