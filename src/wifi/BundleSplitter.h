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

/// What a bundle's table says: a record for each entry, `name` and `size` filled, and where the first body starts.
struct BundleTable {
  std::vector<_Sha1obj> entries;
  std::uint64_t bodyStart;
};

/// Decodes the table at the start of a bundle from the bytes that are there so far; nothing while it is not whole.
using TableDecoder = std::function<std::optional<BundleTable>(std::span<const char>)>;

/// Splits a bundle into its files while it arrives, so that each byte is stored once, in the record that it belongs to.
/// What the table claims is believed only as bytes arrive.
class BundleSplitter final : public ChunkSink {
 public:
  explicit BundleSplitter(TableDecoder decoder);

  void Append(std::span<const char> bytes) override;

  /// Bytes that arrived.
  std::uint64_t Received() const { return received_; }
  /// The table, once it is whole.
  const std::optional<BundleTable>& Table() const { return table_; }
  /// Hands over the records whose size is not 0, in table order; empty when the table or a body is short.
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
