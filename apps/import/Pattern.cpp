// Turns a pattern such as {year}/{name} into a path below the target folder.
#include "apps/import/Pattern.h"

#include <algorithm>
#include <map>
#include <optional>

#include "apps/camera/Picture.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/SafeName.h"

namespace apps {
namespace {

constexpr std::string_view kTokens[] = {"folder", "name", "stem",  "ext", "number", "serial",
                                        "date",   "year", "month", "day", "time"};

constexpr std::string_view kUndated = "undated";

Failure Wrong(std::string_view text, const std::string& why) {
  return Failure(ExitCode::kUsage, "The pattern \"" + Printable(text) + "\" " + why);
}

std::string AllTokens() {
  std::string all;
  for (const std::string_view token : kTokens) {
    all += (all.empty() ? "{" : " {") + std::string(token) + "}";
  }
  return all;
}

constexpr std::string_view kTimeTokens[] = {"date", "year", "month", "day", "time"};

bool HasTimeToken(std::string_view text) {
  return std::any_of(std::begin(kTimeTokens), std::end(kTimeTokens), [&](std::string_view token) {
    return text.find("{" + std::string(token) + "}") != std::string_view::npos;
  });
}

void CheckTokens(std::string_view text) {
  for (std::size_t open = text.find('{'); open != std::string_view::npos; open = text.find('{', open + 1)) {
    const std::size_t close = text.find('}', open);
    const std::string_view token = close == std::string_view::npos ? "" : text.substr(open + 1, close - open - 1);
    if (std::find(std::begin(kTokens), std::end(kTokens), token) == std::end(kTokens)) {
      throw Wrong(text, "has a token that is not known; there are " + AllTokens() + ".");
    }
  }
}

std::vector<std::string> Components(std::string_view text) {
  std::vector<std::string> parts;
  while (true) {
    const std::size_t slash = text.find('/');
    parts.emplace_back(text.substr(0, slash));
    if (slash != std::string_view::npos && slash + 1 == text.size()) {
      parts.emplace_back("{name}");
      return parts;
    }
    if (slash == std::string_view::npos) return parts;
    text.remove_prefix(slash + 1);
  }
}

bool Has(std::string_view part, std::string_view token) {
  return part.find(token) != std::string_view::npos;
}

// The pattern that was probably meant by one whose last part does not name a file.
std::string RightForm(const std::string& text, const std::string& last) {
  if (Has(last, "{stem}")) return text + ".{ext}";
  const std::size_t extension = text.rfind(".{ext}");
  if (!Has(last, "{ext}") || extension == std::string::npos) return text + "/{name}";
  return text.substr(0, extension) + "_{stem}" + text.substr(extension);
}

// Without them files get no extension, or all the same name.
void CheckName(std::string_view text, const std::string& last) {
  if (Has(last, "{name}") || (Has(last, "{stem}") && Has(last, "{ext}"))) return;
  throw Wrong(text, "does not name the files: its last part needs {name}, or {stem} and {ext}, as in \"" +
                        Printable(RightForm(std::string(text), last)) + "\".");
}

using Values = std::map<std::string_view, std::string>;

void AddTime(Values& values, const std::optional<std::string>& time) {
  const std::string undated(kUndated);
  // "2026-03-14 15:09:26"
  values["date"] = time ? time->substr(0, 10) : undated;
  values["year"] = time ? time->substr(0, 4) : undated;
  values["month"] = time ? time->substr(5, 2) : undated;
  values["day"] = time ? time->substr(8, 2) : undated;
  values["time"] = time ? time->substr(11, 2) + time->substr(14, 2) + time->substr(17, 2) : undated;
}

Values ValuesOf(const DcfObj& picture, int type, const std::string& serial, const std::optional<TakenTime>& taken) {
  Values values;
  values["folder"] = SafeName(PictureFolder(picture));
  values["name"] = SafeName(PictureFileName(picture, type));
  values["stem"] = SafeName(PictureStem(picture));
  values["ext"] = std::string(FileTypeName(type));
  values["number"] = std::to_string(picture.fileNumber);
  values["serial"] = SafeName(serial);
  AddTime(values, taken ? std::optional(TakenText(*taken)) : std::nullopt);
  return values;
}

std::string Filled(std::string_view component, const Values& values) {
  std::string out;
  while (!component.empty()) {
    const std::size_t open = std::min(component.find('{'), component.size());
    out += component.substr(0, open);
    component.remove_prefix(open);
    if (component.empty()) break;
    const std::size_t close = component.find('}');
    out += values.at(component.substr(1, close - 1));
    component.remove_prefix(close + 1);
  }
  return out;
}

}  // namespace

std::string LocalPath::Text() const {
  std::string text;
  for (const std::string& folder : folders) text += folder + "/";
  return text + name;
}

Pattern::Pattern(std::string_view text) : components_(Components(text)), hasTime_(HasTimeToken(text)) {
  CheckTokens(text);
  for (const std::string& component : components_) {
    if (component == "." || component == "..") throw Wrong(text, "leads out of the folder.");
    if (component.empty()) throw Wrong(text, "has an empty part; it is relative to the folder and ends with a name.");
    if (component[0] == '.') throw Wrong(text, "has a part that begins with a dot; such files are hidden.");
  }
  CheckName(text, components_.back());
}

std::string_view Pattern::By(std::string_view word) {
  if (word == "day") return "{year}/{month}/{day}/{name}";
  if (word == "month") return "{year}/{month}/{name}";
  if (word == "year") return "{year}/{name}";
  throw Failure(ExitCode::kUsage, "--by takes day, month or year, not \"" + Printable(word) + "\".");
}

LocalPath Pattern::Apply(const DcfObj& picture, int type, const std::string& serial,
                         const std::optional<TakenTime>& time) const {
  const Values values = ValuesOf(picture, type, serial, time);
  LocalPath path;
  for (const std::string& component : components_) {
    std::string filled = Filled(component, values);
    // "undated/undated" for year and month says it once too often.
    if (filled == kUndated && !path.folders.empty() && path.folders.back() == kUndated) continue;
    path.folders.push_back(std::move(filled));
  }
  path.name = std::move(path.folders.back());
  path.folders.pop_back();
  return path;
}

}  // namespace apps
