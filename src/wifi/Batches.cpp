// Pictures addressed by SHA-1 key: batches, and the compressed raw data of one picture.

#include <numeric>

#include "BulkRead.h"
#include "BundleTables.h"
#include "Camera.h"
#include "Command.h"
#include "SizeReconciliation.h"

namespace {

/// Each key followed by its qualifier, without separators; a qualifier that is missing is empty.
std::string BatchRequest(const std::vector<std::string>& keys, const std::vector<std::string>& qualifiers) {
  std::string text;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    text += keys[i];
    text += i < qualifiers.size() ? qualifiers[i] : "";
  }
  return text;
}

/// The length that a batch bundle's table demands, in unsigned 32-bit arithmetic.
std::uint32_t BatchLength(const kelva::BundleTable& table) {
  auto length = static_cast<std::uint32_t>(table.bodyStart);
  for (const _Sha1obj& entry : table.entries) length += entry.size;
  return length;
}

}  // namespace

std::vector<_Sha1obj> Camera::ReadFilesBySha1(std::vector<std::string> keys, std::vector<std::string> qualifiers,
                                              void (*progress)(void*, float), void* context, bool transferFlag) {
  kelva::BundleSplitter bundle([&keys](std::span<const char> head) { return kelva::DecodeBatchTable(keys, head); });
  const std::optional<std::uint32_t> announced = kelva::ReadBundle(
      *this, chunkSize_, {kelva::select::kBatch, BatchRequest(keys, qualifiers), progress, context, transferFlag},
      bundle);
  if (!announced || !kelva::ReconcileSize(bundle.Received(), *announced, __func__)) return {};
  // Reconciled, so the bundle is as long as announced once a surplus byte is cut off.
  if (!bundle.Table() || BatchLength(*bundle.Table()) != *announced) return {};
  return bundle.TakeFiles();
}

bool Camera::DeleteBatch(std::vector<std::string> keys, bool transferFlag) {
  ClearCancel(transferFlag);
  const std::string text = std::accumulate(keys.begin(), keys.end(), std::string());
  return kelva::SendText(*this, kelva::Block(kelva::Operation::kAction, kelva::action::kDeleteBatch), text.c_str(),
                         text.size(), transferFlag);
}

std::vector<_Sha1obj> Camera::ReadCompressedRaw(std::string key, void (*progress)(void*, float), void* context,
                                                bool transferFlag) {
  kelva::BundleSplitter bundle(
      [&key](std::span<const char> head) { return kelva::DecodeCompressedRawTable(key, head); });
  if (!kelva::ReadBundle(*this, chunkSize_, {kelva::select::kCompressedRaw, key, progress, context, transferFlag},
                         bundle) ||
      !bundle.Table()) {
    return {};
  }
  const kelva::BundleTable& table = *bundle.Table();
  if (bundle.Received() != table.bodyStart + table.entries[0].size + table.entries[1].size) return {};
  return bundle.TakeFiles();
}
