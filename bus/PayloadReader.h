#ifndef KELVA_BUS_PAYLOAD_READER_H_
#define KELVA_BUS_PAYLOAD_READER_H_

#include <string>
#include <string_view>

#include "bus/Protocol.h"

namespace bus {

/// Reads the values of a payload from front to back. After the first value that does not fit, every value is 0 or
/// empty; ask Complete at the end.
class PayloadReader {
 public:
  explicit PayloadReader(std::span<const std::uint8_t> bytes) : rest_(bytes) {}

  template <typename Number>
  Number Take() {
    if (!Has(sizeof(Number))) return Number{};
    const Number value = base::Load<Number>(rest_, 0);
    rest_ = rest_.subspan(sizeof(Number));
    return value;
  }

  /// A 16-bit length and that many bytes.
  std::string TakeText() {
    const std::size_t length = Take<std::uint16_t>();
    if (length > kMaxText || !Has(length)) return Fail();
    std::string text(rest_.begin(), rest_.begin() + static_cast<std::ptrdiff_t>(length));
    rest_ = rest_.subspan(length);
    return text;
  }

  std::span<const std::uint8_t> TakeRest() {
    const std::span<const std::uint8_t> rest = rest_;
    rest_ = {};
    return rest;
  }

  bool Good() const { return good_; }
  /// Whether everything fitted and nothing is left.
  bool Complete() const { return good_ && rest_.empty(); }

 private:
  bool Has(std::size_t length) {
    good_ = good_ && rest_.size() >= length;
    return good_;
  }
  std::string Fail() {
    good_ = false;
    return {};
  }

  std::span<const std::uint8_t> rest_;
  bool good_ = true;
};

inline void AppendBusText(base::Bytes& bytes, std::string_view text) {
  text = text.substr(0, kMaxText);
  base::Append(bytes, static_cast<std::uint16_t>(text.size()));
  base::AppendText(bytes, text);
}

}  // namespace bus

#endif  // KELVA_BUS_PAYLOAD_READER_H_
