// Prints JSON values; a writer only, because the tool reads none.
#include "apps/commandline/Json.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "apps/commandline/Printable.h"
#include "base/Hex.h"

namespace apps {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

void AppendControl(std::string& out, char32_t c) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "\\u%04x", static_cast<unsigned>(c));
  out += text.data();
}

void AppendAscii(std::string& out, char c) {
  constexpr std::string_view kEscaped = "\"\\\n\t";
  constexpr std::string_view kLetters = "\"\\nt";  // what stands behind the backslash
  const auto byte = static_cast<unsigned char>(c);
  if (const std::size_t at = kEscaped.find(c); at != std::string_view::npos) {
    out.append("\\").append(1, kLetters[at]);
  } else if (byte < 0x20 || byte == 0x7F) {
    AppendControl(out, byte);
  } else {
    out += c;
  }
}

void AppendText(std::string& out, std::string_view text) {
  out += '"';
  while (!text.empty()) {
    const Utf8Piece piece = FirstUtf8(text);
    if (!piece.valid) {
      out += kReplacement;
    } else if (piece.length == 1) {
      AppendAscii(out, text[0]);
    } else if (IsCommand(piece.codePoint)) {
      // All of them are below 0x10000. A terminal that shows the document would obey them.
      AppendControl(out, piece.codePoint);
    } else {
      out += text.substr(0, piece.length);
    }
    text.remove_prefix(piece.length);
  }
  out += '"';
}

template <typename Number>
void AppendNumber(std::string& out, Number value) {
  std::array<char, 32> text{};
  const auto result = std::to_chars(text.data(), text.data() + text.size(), value);
  out.append(text.data(), result.ptr);
}

}  // namespace

Json Json::Object() {
  return Json(Members{});
}

Json Json::Array() {
  return Json(Elements{});
}

Json& Json::Set(std::string_view name, Json value) & {
  std::get<Members>(value_).emplace_back(std::string(name), std::move(value));
  return *this;
}

Json& Json::SetBytes(std::string_view name, std::string_view bytes) & {
  Set(name, bytes);
  if (!IsUtf8(bytes)) Set(std::string(name) + "_hex", base::Hex(bytes));
  return *this;
}

Json&& Json::Merge(Json other) && {
  for (auto& [name, value] : std::get<Members>(other.value_)) Set(name, std::move(value));
  return std::move(*this);
}

bool Json::Has(std::string_view name) const {
  const auto& members = std::get<Members>(value_);
  return std::any_of(members.begin(), members.end(), [&](const auto& member) { return member.first == name; });
}

Json& Json::Push(Json value) {
  std::get<Elements>(value_).push_back(std::move(value));
  return *this;
}

std::string Json::Text() const {
  std::string out;
  Append(out);
  return out;
}

void Json::Append(std::string& out) const {
  struct Printer {
    std::string& out;
    void operator()(std::monostate) const { out += "null"; }
    void operator()(bool value) const { out += value ? "true" : "false"; }
    void operator()(std::int64_t value) const { AppendNumber(out, value); }
    void operator()(std::uint64_t value) const { AppendNumber(out, value); }
    void operator()(double value) const { std::isfinite(value) ? AppendNumber(out, value) : (void)(out += "null"); }
    void operator()(const std::string& value) const { AppendText(out, value); }
    void operator()(const Elements& elements) const {
      out += '[';
      for (std::size_t i = 0; i < elements.size(); ++i) {
        if (i != 0) out += ',';
        elements[i].Append(out);
      }
      out += ']';
    }
    void operator()(const Members& members) const {
      out += '{';
      for (std::size_t i = 0; i < members.size(); ++i) {
        if (i != 0) out += ',';
        AppendText(out, members[i].first);
        out += ':';
        members[i].second.Append(out);
      }
      out += '}';
    }
  };
  std::visit(Printer{out}, value_);
}

}  // namespace apps
