// One exchange as one line of JSON. Written digit by digit, with names that bring their punctuation: a sync has thousands of
// exchanges, and a trace must not slow it down.
#include "apps/trace/ExchangeLine.h"

#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <span>

#include "apps/commandline/Json.h"
#include "apps/trace/CommandName.h"
#include "base/Hex.h"
#include "src/wifi/VscRegister.h"
#include "wire/TransferStatus.h"

namespace apps {
namespace {

constexpr std::size_t kMostShown = 4096;
constexpr std::size_t kHeadSize = 8;

// Takes names as they stand in the line: R"(,"name":)".
class Line {
 public:
  explicit Line(std::string_view start) {
    text_.reserve(512);
    text_ += start;
  }

  template <typename Integer>
  void Number(std::string_view name, Integer value) {
    text_ += name;
    std::array<char, 24> digits{};
    text_.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
  }
  /// A text that needs no escaping.
  void Word(std::string_view name, std::string_view word) {
    text_ += name;
    text_ += '"';
    text_ += word;
    text_ += '"';
  }
  void Hex(std::string_view name, std::span<const char> bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    text_ += name;
    const std::size_t at = text_.size();
    text_.resize(at + 2 * bytes.size() + 2, '"');
    char* digit = text_.data() + at + 1;
    for (const char c : bytes) {
      const auto byte = static_cast<std::uint8_t>(c);
      *digit++ = kDigits.data()[byte >> 4];
      *digit++ = kDigits.data()[byte & 0x0F];
    }
  }
  /// Its eight digits.
  void Word32(std::string_view name, std::uint32_t value) {
    Hex(name, std::array{static_cast<char>(value >> 24), static_cast<char>(value >> 16), static_cast<char>(value >> 8),
                         static_cast<char>(value)});
  }
  /// Any text.
  void Text(std::string_view name, std::string_view text) {
    text_ += name;
    text_ += Json(text).Text();
  }

  std::string End() && {
    text_ += "}\n";
    return std::move(text_);
  }

 private:
  std::string text_;
};

void AddPlace(Line& line, const ExchangePlace& place, const kelva::Exchange& exchange, Disclosure disclosure) {
  line.Number(R"(,"process":)", place.process);
  line.Number(R"(,"camera":)", place.camera);
  line.Number(R"(,"number":)", place.number);
  line.Number(R"(,"at_us":)", place.at.count());
  line.Word(R"(,"command":)", CommandName(exchange.block));
  line.Hex(R"(,"block":)", {reinterpret_cast<const char*>(exchange.block.bytes), sizeof exchange.block.bytes});
  line.Number(R"(,"direction":)", exchange.direction);
  if (disclosure.shown != Shown::kNothing) line.Number(R"(,"asked":)", exchange.asked);
}

void AddStatus(Line& line, std::uint32_t status) {
  line.Word32(R"(,"status":)", status);
  const wire::Sense sense = wire::SenseOf(status);
  if (sense != wire::Sense{}) line.Word(R"(,"sense":)", base::Hex(std::array{sense.key, sense.asc, sense.ascq}));
}

void AddFailure(Line& line, const kelva::Exchange& exchange, const std::string* serial) {
  if (!exchange.codes) {
    const std::string text(exchange.error);
    return line.Text(R"(,"error":)", serial == nullptr ? text : WithStandIns(text, Personal::kNothing, *serial));
  }
  line.Word32(R"(,"return_code":)", static_cast<std::uint32_t>(exchange.codes->returnCode));
  // The driver has written no status when the call itself failed.
  if (exchange.codes->returnCode == 0) AddStatus(line, exchange.codes->status);
}

// The first `count` bytes of the payload, with stand-ins.
std::string Bytes(std::span<const char> payload, std::size_t count, Personal personal, const std::string& serial) {
  // As much more as shows a serial number that begins in them, and is then cut.
  const std::size_t looked = std::min(payload.size(), count + std::max<std::size_t>(serial.size(), 1) - 1);
  return WithStandIns({payload.data(), looked}, personal, serial).substr(0, count);
}

void AddPayload(Line& line, std::span<const char> payload, Disclosure disclosure, const std::string* serial) {
  if (disclosure.shown == Shown::kNothing) return line.Word(R"(,"payload":)", "hidden");
  if (payload.empty()) return;
  const std::size_t most = disclosure.shown == Shown::kBytes  ? kMostShown
                           : disclosure.shown == Shown::kHead ? kHeadSize
                                                              : 0;
  const std::size_t shown = std::min(payload.size(), most);
  constexpr std::string_view kName = R"(,"hex":)";
  if (shown > 0 && serial == nullptr) line.Hex(kName, payload.first(shown));
  if (shown > 0 && serial != nullptr) line.Hex(kName, Bytes(payload, shown, disclosure.personal, *serial));
  if (shown == payload.size()) return;
  line.Number(R"(,"bytes":)", payload.size());
  line.Word32(R"(,"crc32":)", libdeflate_crc32(0, payload.data(), payload.size()));
}

}  // namespace

std::string ExchangeLine(const ExchangePlace& place, const kelva::Exchange& exchange, Disclosure disclosure,
                         const std::string* serial) {
  Line line(R"({"event":"exchange")");
  AddPlace(line, place, exchange, disclosure);
  const bool done = exchange.result == kelva::Exchange::Result::kDone;
  if (done && disclosure.shown != Shown::kNothing) line.Number(R"(,"moved":)", exchange.moved);
  line.Number(R"(,"us":)", std::chrono::duration_cast<std::chrono::microseconds>(exchange.took).count());
  line.Word(R"(,"result":)", done ? "done" : exchange.result == kelva::Exchange::Result::kFalse ? "false" : "failed");
  if (exchange.result == kelva::Exchange::Result::kFailed) AddFailure(line, exchange, serial);
  AddPayload(line, exchange.payload, disclosure, serial);
  return std::move(line).End();
}

std::string UnfinishedLine(const ExchangePlace& place, const kelva::Exchange& exchange, Disclosure disclosure) {
  Line line(R"({"event":"unfinished")");
  AddPlace(line, place, exchange, disclosure);
  return std::move(line).End();
}

}  // namespace apps
