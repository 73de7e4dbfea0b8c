#ifndef KELVA_WIFI_BUNDLE_SPLITTER_H_
#define KELVA_WIFI_BUNDLE_SPLITTER_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "ChunkedRead.h"
#include "Sha1obj.h"

namespace kelva {

/// A decoded table: one record for each entry, with `name` and `size`, and the offset of the first body.
struct BundleTable {
  std::vector<_Sha1obj> entries;
  std::uint64_t bodyStart;
};

/// Decodes the table from the bytes of a bundle that have arrived; nothing while the table is incomplete.
using TableDecoder = std::function<std::optional<BundleTable>(std::span<const char>)>;

/// Splits a bundle into its files while it arrives, so that each byte is stored once, in the record that it belongs to.
/// Sizes in the table are a camera's claim: memory grows only as bytes arrive.
class BundleSplitter final : public ChunkSink {
 public:
  explicit BundleSplitter(TableDecoder decoder);

  void Append(std::span<const char> bytes) override;

  /// Bytes that arrived.
  std::uint64_t Received() const { return received_; }
  /// The table, once it is whole.
  const std::optional<BundleTable>& Table() const { return table_; }
  /// Moves out the records whose size is not 0, in table order. Empty when the table or a body is incomplete.
  std::vector<_Sha1obj> TakeFiles();

 private:
  void AppendToBodies(std::span<const char> bytes);
  void SkipFullBodies();

  TableDecoder decoder_;
  std::vector<char> head_;  // the bundle so far, until its table is whole
  std::optional<BundleTable> table_;
  std::size_t current_ = 0;  // the entry whose body is arriving
  std::uint64_t received_ = 0;
};

}  // namespace kelva

#endif  // KELVA_WIFI_BUNDLE_SPLITTER_H_
