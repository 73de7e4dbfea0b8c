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
  Json list = Json::Array();
  std::vector<std::vector<std::string>> rows;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const std::string name = InformationName(i);
    list.Push(Json::Object().Set("name", name).SetBytes("text", texts[i]));
    rows.push_back({name.empty() ? std::to_string(i + 1) : name, Printable(texts[i])});
  }
  Json members = CameraResult(camera).Set("texts", std::move(list)).Set("last", record.last);
  members.Set("record", base::Hex({reinterpret_cast<const char*>(record.information), sizeof record.information}));
  return context.Result(std::move(members), Columns(rows));
}

constexpr Example kExamples[] = {{"kelva info", "Show model, revision and firmware."}};

constexpr Verb kVerbs[] = {
    {"info", "Show what the camera says about itself", kNoArguments, kNoOptions,
     R"(The camera sends a record of texts, one after another. The first ones are shown with the names that this
tool knows, the others with their number.)",
     R"(texts: array of name (empty if not known) and text
last: the number after the record
record: its 640 bytes in hexadecimal)",
     kExamples, RunInfo}};

}  // namespace

std::span<const Verb> InfoVerbs() {
  return kVerbs;
}

}  // namespace apps
