// Prints JSON values; a writer only, because the tool reads none.
#include "apps/commandline/Json.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "apps/commandline/Decimal.h"
#include "apps/commandline/Printable.h"
#include "base/Hex.h"

namespace apps {
namespace {

constexpr std::size_t kPiece = 65'536;  // of text that is printed at once
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

// Visits values and puts them behind each other. Hands the text on when there is enough of it.
class Json::Printer {
 public:
  using Take = std::function<void(std::string_view)>;

  // Without `take` all text stays in `out`.
  Printer(std::string& out, const Take* take) : out_(out), take_(take) {}

  void operator()(std::monostate) const { out_ += "null"; }
  void operator()(bool value) const { out_ += value ? "true" : "false"; }
  void operator()(std::int64_t value) const { AppendNumber(out_, value); }
  void operator()(std::uint64_t value) const { AppendNumber(out_, value); }
  void operator()(double value) const { out_ += std::isfinite(value) ? Shortest(value) : "null"; }
  void operator()(const std::string& value) const { AppendText(out_, value); }
  void operator()(const Elements& elements) const {
    out_ += '[';
    for (const std::string& piece : elements.pieces) {
      out_ += piece;
      HandOn();
    }
    out_ += ']';
  }
  void operator()(const Members& members) const {
    out_ += '{';
    for (std::size_t i = 0; i < members.size(); ++i) {
      if (i != 0) out_ += ',';
      AppendText(out_, members[i].first);
      out_ += ':';
      std::visit(*this, members[i].second.value_);
      HandOn();
    }
    out_ += '}';
  }
  void operator()(const Made& make) const {
    out_ += '[';
    bool first = true;
    make([&](const Json& element) {
      if (!std::exchange(first, false)) out_ += ',';
      std::visit(*this, element.value_);
      HandOn();
    });
    out_ += ']';
  }

 private:
  void HandOn() const {
    if (take_ == nullptr || out_.size() < kPiece) return;
    (*take_)(out_);
    out_.clear();
  }

  std::string& out_;
  const Take* take_;
};

Json Json::Holding(Value value) {
  Json json;
  json.value_ = std::move(value);
  return json;
}

Json Json::Object() {
  return Holding(Members{});
}

Json Json::Array() {
  return Holding(Elements{});
}

Json Json::ArrayFrom(std::function<void(const Give&)> make) {
  return Holding(std::move(make));
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

Json& Json::Push(const Json& value) {
  std::visit(Printer(NextElement(), nullptr), value.value_);
  return *this;
}

Json& Json::PushPrinted(std::string_view text) {
  NextElement() += text;
  return *this;
}

// Where the text of the next element goes.
std::string& Json::NextElement() {
  std::vector<std::string>& pieces = std::get<Elements>(value_).pieces;
  const bool first = pieces.empty();
  if (first || pieces.back().size() >= kPiece) pieces.emplace_back();
  if (!first) pieces.back() += ',';
  return pieces.back();
}

std::string Json::Text() const {
  std::string out;
  std::visit(Printer(out, nullptr), value_);
  return out;
}

void Json::Print(const std::function<void(std::string_view)>& take) const {
  std::string out;
  std::visit(Printer(out, &take), value_);
  take(out);
}

}  // namespace apps
