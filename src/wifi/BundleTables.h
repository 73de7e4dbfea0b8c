#ifndef KELVA_WIFI_BUNDLE_TABLES_H_
#define KELVA_WIFI_BUNDLE_TABLES_H_

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "BundleSplitter.h"

// The tables of the four bundles. Each decoder reads only the bytes that have arrived.

namespace kelva {

/// A count N, N entries of 36 bytes, and the bodies from 36 x N, four bytes before the table's end. The table is
/// complete once its first 36 x N bytes and the end of its last name have arrived.
std::optional<BundleTable> DecodeCrashLogTable(std::span<const char> bundle);

/// 31 entries of 36 bytes, then the bodies.
std::optional<BundleTable> DecodeCalibrationTable(std::span<const char> bundle);

/// One size for each key, in the order asked, then the bodies.
std::optional<BundleTable> DecodeBatchTable(const std::vector<std::string>& keys, std::span<const char> bundle);

/// Two part sizes, then the parts, both named by the key.
std::optional<BundleTable> DecodeCompressedRawTable(const std::string& key, std::span<const char> bundle);

}  // namespace kelva

#endif  // KELVA_WIFI_BUNDLE_TABLES_H_
