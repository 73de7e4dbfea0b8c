#include "BulkRead.h"

#include "Command.h"
#include "Progress.h"

namespace kelva {
namespace {

bool PrepareBundle(Camera& camera, const BulkRead& read) {
  const _VscCdb cdb = Block(Operation::kSelect, read.selection);
  return read.text ? SendText(camera, cdb, read.text->c_str(), read.text->size(), read.flag)
                   : SendCommand(camera, cdb, read.flag);
}

}  // namespace

std::optional<std::uint32_t> ReadBundle(Camera& camera, const int& chunkSize, const BulkRead& read,
                                        BundleSplitter& bundle) {
  if (!camera.IsOpen()) return std::nullopt;
  camera.ClearCancel(read.flag);
  std::uint32_t announced = 0;
  if (!PrepareBundle(camera, read) || !AskSelectedSize(camera, read.flag, announced) || announced == 0) {
    return std::nullopt;
  }
  const auto progress = ReadProgress::AfterFirstChunk(read.progress, read.context, announced);
  if (!ReadChunks(camera, chunkSize, {read_chunk::kBundle, read.flag, progress}, bundle)) return std::nullopt;
  return announced;
}

}  // namespace kelva
