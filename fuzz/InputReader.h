#ifndef KELVA_FUZZ_INPUT_READER_H_
#define KELVA_FUZZ_INPUT_READER_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

/// Takes a fuzz input apart from the front. Past its end everything is zero and empty.
class InputReader {
 public:
  InputReader(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

  bool AtEnd() const { return rest_.empty(); }

  std::uint8_t Byte() {
    const auto bytes = Bytes(1);
    return bytes.empty() ? std::uint8_t{0} : bytes[0];
  }

  std::uint32_t Word() {
    std::uint32_t word = 0;
    const auto bytes = Bytes(sizeof(word));
    std::memcpy(&word, bytes.data(), bytes.size());
    return word;
  }

  /// The next `count` bytes, or what is left.
  std::span<const std::uint8_t> Bytes(std::size_t count) {
    const auto taken = rest_.first(std::min(count, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }

  std::span<const std::uint8_t> Rest() { return Bytes(rest_.size()); }

 private:
  std::span<const std::uint8_t> rest_;
};

#endif  // KELVA_FUZZ_INPUT_READER_H_
