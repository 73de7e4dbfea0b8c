// One exchange as one line of JSON. Written digit by digit: a sync has thousands of exchanges.
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

class Line {
 public:
  explicit Line(std::string_view event) {
    text_.reserve(512);
    text_ += "{\"event\":\"";
    text_ += event;
    text_ += '"';
  }

  template <typename Integer>
  void Number(std::string_view name, Integer value) {
    Name(name);
    std::array<char, 24> digits{};
    text_.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
  }
  /// A text that needs no escaping.
  void Word(std::string_view name, std::string_view word) {
    Name(name);
    text_ += '"';
    text_ += word;
    text_ += '"';
  }
  void Hex(std::string_view name, std::string_view bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    Name(name);
    const std::size_t at = text_.size();
    text_.resize(at + 2 * bytes.size() + 2, '"');
    char* digit = text_.data() + at + 1;
    for (const char c : bytes) {
      const auto byte = static_cast<std::uint8_t>(c);
      *digit++ = kDigits.data()[byte >> 4];
      *digit++ = kDigits.data()[byte & 0x0F];
    }
  }
  /// Any text.
  void Text(std::string_view name, std::string_view text) {
    Name(name);
    text_ += Json(text).Text();
  }

  std::string End() && {
    text_ += "}\n";
    return std::move(text_);
  }

 private:
  void Name(std::string_view name) {
    text_ += ",\"";
    text_ += name;
    text_ += "\":";
  }

  std::string text_;
};

std::string Word32(std::uint32_t value) {
  std::array<std::uint8_t, 4> bytes{static_cast<std::uint8_t>(value >> 24), static_cast<std::uint8_t>(value >> 16),
                                    static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value)};
  return base::Hex(bytes);
}

void AddPlace(Line& line, const ExchangePlace& place, const kelva::Exchange& exchange, Disclosure disclosure) {
  line.Number("process", place.process);
  line.Number("camera", place.camera);
  line.Number("number", place.number);
  line.Number("at_us", place.at.count());
  line.Word("command", CommandName(exchange.block));
  line.Hex("block", {reinterpret_cast<const char*>(exchange.block.bytes), sizeof exchange.block.bytes});
  line.Number("direction", exchange.direction);
  if (disclosure.shown != Shown::kNothing) line.Number("asked", exchange.asked);
}

void AddStatus(Line& line, std::uint32_t status) {
  line.Word("status", Word32(status));
  const wire::Sense sense = wire::SenseOf(status);
  if (sense != wire::Sense{}) line.Word("sense", base::Hex(std::array{sense.key, sense.asc, sense.ascq}));
}

void AddFailure(Line& line, const kelva::Exchange& exchange, const std::string* serial) {
  if (!exchange.codes) {
    const std::string text(exchange.error);
    return line.Text("error", serial == nullptr ? text : WithStandIns(text, Personal::kNothing, *serial));
  }
  line.Word("return_code", Word32(static_cast<std::uint32_t>(exchange.codes->returnCode)));
  // The driver has written no status when the call itself failed.
  if (exchange.codes->returnCode == 0) AddStatus(line, exchange.codes->status);
}

// The first `count` bytes of the payload.
std::string Bytes(std::span<const char> payload, std::size_t count, Personal personal, const std::string* serial) {
  if (serial == nullptr) return {payload.data(), count};
  // As much more as shows a serial number that begins in them, and is then cut.
  const std::size_t looked = std::min(payload.size(), count + std::max<std::size_t>(serial->size(), 1) - 1);
  return WithStandIns({payload.data(), looked}, personal, *serial).substr(0, count);
}

void AddPayload(Line& line, std::span<const char> payload, Disclosure disclosure, const std::string* serial) {
  if (disclosure.shown == Shown::kNothing) return line.Word("payload", "hidden");
  if (payload.empty()) return;
  const std::size_t most = disclosure.shown == Shown::kBytes  ? kMostShown
                           : disclosure.shown == Shown::kHead ? kHeadSize
                                                              : 0;
  const std::size_t shown = std::min(payload.size(), most);
  if (shown > 0) {
    line.Hex("hex", Bytes(payload, shown, disclosure.personal, serial));
  }
  if (shown == payload.size()) return;
  line.Number("bytes", payload.size());
  line.Word("crc32", Word32(libdeflate_crc32(0, payload.data(), payload.size())));
}

}  // namespace

std::string ExchangeLine(const ExchangePlace& place, const kelva::Exchange& exchange, Disclosure disclosure,
                         const std::string* serial) {
  Line line("exchange");
  AddPlace(line, place, exchange, disclosure);
  const bool done = exchange.result == kelva::Exchange::Result::kDone;
  if (done && disclosure.shown != Shown::kNothing) line.Number("moved", exchange.moved);
  line.Number("us", std::chrono::duration_cast<std::chrono::microseconds>(exchange.took).count());
  line.Word("result", done ? "done" : exchange.result == kelva::Exchange::Result::kFalse ? "false" : "failed");
  if (exchange.result == kelva::Exchange::Result::kFailed) AddFailure(line, exchange, serial);
  AddPayload(line, exchange.payload, disclosure, serial);
  return std::move(line).End();
}

std::string UnfinishedLine(const ExchangePlace& place, const kelva::Exchange& exchange, Disclosure disclosure) {
  Line line("unfinished");
  AddPlace(line, place, exchange, disclosure);
  return std::move(line).End();
}

}  // namespace apps
