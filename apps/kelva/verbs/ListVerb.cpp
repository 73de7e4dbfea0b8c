// The verb list.
#include <string>
#include <utility>
#include <vector>

#include "apps/camera/Attached.h"
#include "apps/commandline/Columns.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Printable.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

Json CameraMembers(const AttachedCamera& camera) {
  const RegistryCamera& facts = camera.facts;
  Json members = Json::Object().SetBytes("serial", facts.serial).SetBytes("vendor", facts.vendor);
  members.SetBytes("product", facts.product).SetBytes("revision", facts.revision);
  return members.Set("driver", facts.driver).Set("expected_driver", camera.camera->IsScsiInquiryCorrect());
}

std::string Table(const std::vector<AttachedCamera>& cameras, bool withDrivers) {
  std::vector<std::vector<std::string>> rows = {{"SERIAL", "MODEL", "REVISION", "DRIVER"}};
  for (const AttachedCamera& camera : cameras) {
    const RegistryCamera& facts = camera.facts;
    rows.push_back({Printable(SerialWord(facts)), Printable(facts.vendor + " " + facts.product),
                    Printable(facts.revision), facts.driver});
  }
  for (auto& row : rows) row.resize(withDrivers ? row.size() : row.size() - 1);
  return cameras.empty() ? "" : Columns(rows);
}

ExitCode RunList(Context& context) {
  context.Doing("look for cameras");
  std::vector<AttachedCamera> cameras = FindAttached(context.diversion);
  if (const auto serial = WantedSerial(context.call.Value("serial"))) {
    AttachedCamera wanted = Choose(std::move(cameras), serial);
    cameras.clear();
    cameras.push_back(std::move(wanted));
  }
  const int unusable = CountUnusable();
  Json list = Json::Array();
  for (const AttachedCamera& camera : cameras) list.Push(CameraMembers(camera));
  context.Result(Json::Object().Set("cameras", std::move(list)).Set("unusable", unusable),
                 Table(cameras, context.reporter.Style().verbose));
  if (cameras.empty()) context.reporter.Note("No camera is attached.");
  if (unusable > 0) {
    const std::string which = unusable == 1 ? "One camera was taken for a CD drive"
                                            : std::to_string(unusable) + " cameras were taken for CD drives";
    context.reporter.Note(which + " and cannot be used; `kelva doctor` says what to do.");
  }
  return ExitCode::kDone;
}

constexpr Example kExamples[] = {
    {"kelva list", "Show the cameras that are attached."},
    {"kelva list --json | jq -r '.cameras[].serial'", "Their serial numbers, for a script."},
};

constexpr Verb kVerbs[] = {
    {"list", "Show the cameras that are attached", kNoArguments, kNoOptions,
     R"(Reads the system's device registry and opens no camera, so it also works while another program uses a
camera. If no camera is attached, the list is empty and the exit status is 0. With --serial or KELVA_SERIAL only that
camera is shown; if it is not attached, that is an error. A camera without a serial number is shown as -, which --serial takes.

With --verbose a column DRIVER names the driver that serves the camera: com_kelva_Glimmer, or com_kelva_Glimmer_ms where the system also
sees a disk in the camera; on Linux these names stand for the kernel's own drivers. All commands work with both.)",
     R"(cameras: array of serial, vendor, product, revision, driver, expected_driver
unusable: how many cameras the system took for CD drives)",
     kExamples, RunList}};

}  // namespace

std::span<const Verb> ListVerbs() {
  return kVerbs;
}

}  // namespace apps
