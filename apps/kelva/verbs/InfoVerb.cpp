// The verb info.
#include <string>
#include <vector>

#include "apps/camera/Information.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Columns.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/kelva/verbs/Verbs.h"
#include "base/Hex.h"

namespace apps {
namespace {

ExitCode RunInfo(Context& context) {
  const Session camera(context, "read the camera's information");
  _VscCdbCameraInformation record{};
  if (!camera->CameraInformation(record)) {
    throw Failure(ExitCode::kFailed, "The camera gave no information about itself.");
  }
  const std::vector<std::string> texts = InformationTexts(record);
  const bool known = AreKnownTexts(texts, camera.Facts());
  Json list = Json::Array();
  std::vector<std::vector<std::string>> rows;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const std::string name = known ? InformationName(i) : "";
    list.Push(Json::Object().Set("name", name).SetBytes("text", texts[i]));
    rows.push_back({name.empty() ? std::to_string(i + 1) : name, Printable(texts[i])});
  }
  Json members = CameraResult(camera).Set("texts", std::move(list)).Set("last", record.last);
  members.Set("record", base::Hex({reinterpret_cast<const char*>(record.information), sizeof record.information}));
  context.Result(std::move(members), texts.empty() ? InformationDump(record) : Columns(rows));
  if (texts.empty()) {
    context.reporter.Note(
        "The camera's record holds no texts that this tool can read; its bytes are shown in hexadecimal.");
  }
  return ExitCode::kDone;
}

constexpr Example kExamples[] = {{"kelva info", "Show model, revision and firmware."}};

constexpr Verb kVerbs[] = {
    {"info", "Show what the camera says about itself", kNoArguments, kNoOptions,
     R"(The camera sends a record whose layout is its own. If it holds texts, one after another, they are shown with
their number. If they begin with the serial number and the vendor that the system knows too, the first ones have names. Any other
record is shown in hexadecimal.)",
     R"(texts: array of name (empty if not known) and text; empty if the record does not hold texts
last: the number after the record
record: its 640 bytes in hexadecimal)",
     kExamples, RunInfo}};

}  // namespace

std::span<const Verb> InfoVerbs() {
  return kVerbs;
}

}  // namespace apps
