// Commands that fetch several files in one answer, a bundle: crash logs, calibration data, pictures by SHA-1 key and
// the compressed raw data of one picture.

#include <numeric>
#include <optional>

#include "BundleSplitter.h"
#include "BundleTables.h"
#include "Camera.h"
#include "Checks.h"
#include "Command.h"

namespace {

/// One bulk read: what the camera is asked to assemble, and who hears how far it is.
struct BulkRead {
  std::uint8_t selection;           // `select::kBatch` to `select::kCrashLogs`
  std::optional<std::string> text;  // sent with the selection, with its NUL; nothing for a selection without data phase
  void (*progress)(void*, float);
  void* context;
  bool flag;  // handed to ClearCancel and every transfer
};

bool PrepareBundle(Camera& camera, const BulkRead& read) {
  const _VscCdb cdb = kelva::Block(kelva::Operation::kSelect, read.selection);
  return read.text ? kelva::SendText(camera, cdb, read.text->c_str(), read.text->size(), read.flag)
                   : kelva::SendCommand(camera, cdb, read.flag);
}

/// The sequence that the four reads share: select, ask the size, read into the splitter. Returns the announced size;
/// nothing when the camera is not open, a transfer returned false or the camera announced 0 bytes.
std::optional<std::uint32_t> ReadBundle(Camera& camera, const int& chunkSize, const BulkRead& read,
                                        kelva::BundleSplitter& bundle) {
  if (!camera.IsOpen()) return std::nullopt;
  camera.ClearCancel(read.flag);
  std::uint32_t announced = 0;
  if (!PrepareBundle(camera, read) || !kelva::AskSelectedSize(camera, read.flag, announced) || announced == 0) {
    return std::nullopt;
  }
  const auto progress = kelva::ReadProgress::AfterFirstChunk(read.progress, read.context, announced);
  if (!kelva::ReadChunks(camera, chunkSize, {kelva::read_chunk::kBundle, read.flag, progress}, bundle)) {
    return std::nullopt;
  }
  return announced;
}

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

std::vector<_Sha1obj> Camera::ReadCrashLogs(void (*progress)(void*, float), void* context, bool deleteAfterRead,
                                            bool transferFlag) {
  kelva::BundleSplitter bundle(kelva::DecodeCrashLogTable);
  if (!ReadBundle(*this, chunkSize_, {kelva::select::kCrashLogs, std::nullopt, progress, context, transferFlag},
                  bundle)) {
    return {};
  }
  std::vector<_Sha1obj> logs = bundle.TakeFiles();
  if (deleteAfterRead) {
    for (const _Sha1obj& log : logs) DeleteFile(log.name.c_str());
  }
  return logs;
}

std::vector<_Sha1obj> Camera::ReadCalibration(void (*progress)(void*, float), void* context, bool transferFlag) {
  kelva::BundleSplitter bundle(kelva::DecodeCalibrationTable);
  if (!ReadBundle(*this, chunkSize_, {kelva::select::kCalibration, std::nullopt, progress, context, transferFlag},
                  bundle)) {
    return {};
  }
  return bundle.TakeFiles();
}

std::vector<_Sha1obj> Camera::ReadFilesBySha1(std::vector<std::string> keys, std::vector<std::string> qualifiers,
                                              void (*progress)(void*, float), void* context, bool transferFlag) {
  kelva::BundleSplitter bundle([&keys](std::span<const char> head) { return kelva::DecodeBatchTable(keys, head); });
  const std::optional<std::uint32_t> announced =
      ReadBundle(*this, chunkSize_,
                 {kelva::select::kBatch, BatchRequest(keys, qualifiers), progress, context, transferFlag}, bundle);
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
  if (!ReadBundle(*this, chunkSize_, {kelva::select::kCompressedRaw, key, progress, context, transferFlag}, bundle) ||
      !bundle.Table()) {
    return {};
  }
  const kelva::BundleTable& table = *bundle.Table();
  if (bundle.Received() != table.bodyStart + table.entries[0].size + table.entries[1].size) return {};
  return bundle.TakeFiles();
}
