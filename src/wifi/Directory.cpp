// Lists one directory, and walks a whole subtree.

#include <string>
#include <utility>
#include <vector>

#include "Camera.h"
#include "ChunkedRead.h"
#include "Command.h"
#include "DirectoryListing.h"

using kelva::Block;
using kelva::Operation;

namespace {

/// A directory whose entries are being visited.
struct Visit {
  std::string path;
  std::vector<CameraDirent> entries;
  std::size_t next = 0;
};

}  // namespace

std::vector<CameraDirent> Camera::ReadDir(const char* path) {
  ClearCancel(true);
  if (!kelva::SendText(*this, Block(Operation::kSelect, kelva::select::kDirectory), path, true)) return {};
  kelva::VectorSink sink;
  if (!kelva::ReadChunks(*this, chunkSize_, {kelva::read_chunk::kSelected, true, kelva::ReadProgress::None()}, sink)) {
    return {};
  }
  return kelva::DecodeListing(sink.Take());
}

void Camera::TraverseDir(const char* path, std::vector<std::pair<std::string, long long>>& files) {
  // An explicit stack: a camera chooses the depth and must not be able to exhaust ours.
  std::vector<Visit> visits;
  visits.push_back({path, ReadDir(path)});
  while (!visits.empty()) {
    Visit& visit = visits.back();
    if (visit.next == visit.entries.size()) {
      visits.pop_back();
      continue;
    }
    const CameraDirent& entry = visit.entries[visit.next++];
    std::string full = visit.path + "\\" + entry.name;
    if ((entry.attributes & kelva::kAttributeDirectory) != 0) {
      if (entry.name != "." && entry.name != "..") {
        std::vector<CameraDirent> below = ReadDir(full.c_str());
        visits.push_back({std::move(full), std::move(below)});
      }
    } else if ((entry.attributes & kelva::kAttributeVolumeLabel) == 0) {
      files.emplace_back(std::move(full), entry.size);
    }
  }
}
