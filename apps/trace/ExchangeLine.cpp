// One exchange as one line of JSON. Written digit by digit, with names that bring their punctuation: a sync has thousands of
// exchanges, and a trace must not slow it down.
#include "apps/trace/ExchangeLine.h"

#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
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

// The two digits of every byte, one pair after the other.
constexpr auto kDigitPairs = [] {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::array<char, 512> pairs{};
  for (std::size_t byte = 0; byte < 256; ++byte) {
    pairs[2 * byte] = kDigits[byte >> 4];
    pairs[2 * byte + 1] = kDigits[byte & 0x0F];
  }
  return pairs;
}();

// Takes names as they stand in the line: R"(,"name":)". Writes into a buffer that never becomes smaller, so that a line costs
// no memory of its own.
class Line {
 public:
  template <std::size_t N>
  Line(std::string& buffer, const char (&start)[N]) : buffer_(buffer) {
    Put(start);
  }

  template <std::size_t N, typename Integer>
  void Number(const char (&name)[N], Integer value) {
    constexpr std::size_t kMostDigits = 24;
    Put(name);
    char* const at = Room(kMostDigits);
    size_ += static_cast<std::size_t>(std::to_chars(at, at + kMostDigits, value).ptr - at);
  }
  /// A text that needs no escaping.
  template <std::size_t N>
  void Word(const char (&name)[N], std::string_view word) {
    Put(name);
    Put("\"");
    Put(word.data(), word.size());
    Put("\"");
  }
  template <std::size_t N>
  void Hex(const char (&name)[N], std::span<const char> bytes) {
    Put(name);
    char* digit = Room(2 * bytes.size() + 2);
    size_ += 2 * bytes.size() + 2;
    *digit++ = '"';
    for (const char c : bytes) {
      std::memcpy(digit, &kDigitPairs[2 * std::size_t{static_cast<std::uint8_t>(c)}], 2);
      digit += 2;
    }
    *digit = '"';
  }
  /// Its eight digits.
  template <std::size_t N>
  void Word32(const char (&name)[N], std::uint32_t value) {
    Hex(name, std::array{static_cast<char>(value >> 24), static_cast<char>(value >> 16), static_cast<char>(value >> 8),
                         static_cast<char>(value)});
  }
  /// Any text.
  template <std::size_t N>
  void Text(const char (&name)[N], std::string_view text) {
    const std::string escaped = Json(text).Text();
    Put(name);
    Put(escaped.data(), escaped.size());
  }

  std::string_view End() {
    Put("}\n");
    return {buffer_.data(), size_};
  }

 private:
  /// At least `count` bytes behind what was written.
  char* Room(std::size_t count) {
    if (buffer_.size() - size_ < count) buffer_.resize(std::max(kFirstRoom, 2 * (size_ + count)));
    return buffer_.data() + size_;
  }
  void Put(const char* text, std::size_t count) {
    std::memcpy(Room(count), text, count);
    size_ += count;
  }
  template <std::size_t N>
  void Put(const char (&text)[N]) {
    std::memcpy(Room(N - 1), text, N - 1);
    size_ += N - 1;
  }

  static constexpr std::size_t kFirstRoom = 1024;
  std::string& buffer_;
  std::size_t size_ = 0;
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
  constexpr const char(&kName)[8] = R"(,"hex":)";
  if (shown > 0 && serial == nullptr) line.Hex(kName, payload.first(shown));
  if (shown > 0 && serial != nullptr) line.Hex(kName, Bytes(payload, shown, disclosure.personal, *serial));
  if (shown == payload.size()) return;
  line.Number(R"(,"bytes":)", payload.size());
  line.Word32(R"(,"crc32":)", libdeflate_crc32(0, payload.data(), payload.size()));
}

}  // namespace

std::string_view ExchangeLine(const ExchangePlace& place, const kelva::Exchange& exchange, Disclosure disclosure,
                              const std::string* serial, std::string& buffer) {
  Line line(buffer, R"({"event":"exchange")");
  AddPlace(line, place, exchange, disclosure);
  const bool done = exchange.result == kelva::Exchange::Result::kDone;
  if (done && disclosure.shown != Shown::kNothing) line.Number(R"(,"moved":)", exchange.moved);
  line.Number(R"(,"us":)", std::chrono::duration_cast<std::chrono::microseconds>(exchange.took).count());
  line.Word(R"(,"result":)", done ? "done" : exchange.result == kelva::Exchange::Result::kFalse ? "false" : "failed");
  if (exchange.result == kelva::Exchange::Result::kFailed) AddFailure(line, exchange, serial);
  AddPayload(line, exchange.payload, disclosure, serial);
  return line.End();
}

std::string UnfinishedLine(const ExchangePlace& place, const kelva::Exchange& exchange, Disclosure disclosure) {
  std::string buffer;
  Line line(buffer, R"({"event":"unfinished")");
  AddPlace(line, place, exchange, disclosure);
  return std::string(line.End());
}

}  // namespace apps
