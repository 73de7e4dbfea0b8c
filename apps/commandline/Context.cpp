// Gives a verb's results: one JSON document a line, or text.
#include "apps/commandline/Context.h"

#include <utility>

namespace apps {

Json ResultDocument(std::string_view verb, ExitCode code, Json members) {
  Json document = Json::Object().Set("schema", kJsonSchema).Set("command", verb);
  document.Set("exit", static_cast<int>(code)).Set("ok", code == ExitCode::kDone);
  return std::move(document).Merge(std::move(members));
}

std::string ResultLine(std::string_view verb, ExitCode code, Json members) {
  return ResultDocument(verb, code, std::move(members)).Text() + "\n";
}

ExitCode Context::Result(apps::Json members, std::string_view text, ExitCode code) {
  if (Json() && !out.TakeEnd()) return code;
  if (Json() && code != ExitCode::kDone && !members.Has("reason")) members.Set("reason", WordOf(code));
  if (!text.empty()) reporter.Clear();
  if (Json()) {
    // A short document is written at once with its line feed.
    ResultDocument(call.Name(), code, std::move(members)).Print([this](std::string_view piece) {
      out.Flush();
      out.Add(piece);
    });
    out.Add("\n");
  } else {
    out.Add(text);
  }
  out.Flush();
  return code;
}

void Context::Event(std::string_view event, apps::Json members, std::string_view text) {
  if (!Json() && !text.empty()) reporter.Clear();
  out.Add(Json() ? EventLine(event, std::move(members)) : std::string(text));
  out.Flush();
}

}  // namespace apps
