// Reads members of JSON lines that another process of this tool printed.
#include "apps/kelva/verbs/OwnJson.h"

#include <charconv>

#include "apps/commandline/Json.h"

namespace apps {
namespace {

// What follows "name": in the line. A quote inside a text is printed with a backslash, so this matches names alone.
std::optional<std::string_view> ValueOf(std::string_view line, std::string_view name) {
  const std::string wanted = "\"" + std::string(name) + "\":";
  for (std::size_t at = line.find(wanted); at != std::string_view::npos; at = line.find(wanted, at + 1)) {
    if (at > 0 && (line[at - 1] == '{' || line[at - 1] == ',')) return line.substr(at + wanted.size());
  }
  return std::nullopt;
}

}  // namespace

std::optional<unsigned long long> NumberIn(std::string_view line, std::string_view name) {
  const auto value = ValueOf(line, name);
  unsigned long long number = 0;
  if (!value || std::from_chars(value->data(), value->data() + value->size(), number).ec != std::errc()) {
    return std::nullopt;
  }
  return number;
}

std::optional<std::string> TextIn(std::string_view line, std::string_view name) {
  const auto value = ValueOf(line, name);
  if (!value || !value->starts_with('"')) return std::nullopt;
  std::string text;
  for (std::size_t i = 1; i < value->size(); ++i) {
    char c = (*value)[i];
    if (c == '"') return text;
    if (c == '\\' && i + 1 < value->size()) {
      c = (*value)[++i];
      if (c == 'u') text += '\\';  // a control character stays as it was printed
      if (c == 'n' || c == 't') c = ' ';
    }
    text += c;
  }
  return std::nullopt;
}

std::string WithText(std::string_view line, std::string_view name, std::string_view text) {
  if (!line.starts_with('{') || !line.ends_with('}')) return std::string(line);
  const std::string member = Json::Object().SetBytes(name, text).Text();
  const std::string_view comma = line.size() > 2 ? "," : "";
  return std::string(line.substr(0, line.size() - 1)).append(comma).append(member, 1);
}

}  // namespace apps
