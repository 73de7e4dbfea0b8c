// Reads pieces of a camera's files in any order.
#include "apps/mount/Reading.h"

#include <algorithm>
#include <memory>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

#include "apps/commandline/Words.h"
#include "src/wifi/Command.h"
#include "src/wifi/LittleEndian.h"
#include "src/wifi/OffsetOrder.h"

namespace apps {
namespace {

constexpr std::size_t kMostSpools = 2;

}  // namespace

void Reading::Select(std::uint64_t file, const std::string& path, std::uint64_t size) {
  if (reader_ && file_ == file && reader_->Size() == size) return;
  reader_.reset();
  reader_.emplace(camera_, path);
  file_ = file;
  if (reader_->Size() == size) return;
  const std::string announced = std::to_string(reader_->Size());
  reader_.reset();
  throw std::runtime_error("the camera lists the file with " + Counted(size, "byte") + " and announces " + announced);
}

Pieces::Piece Reading::Read(std::uint64_t file, const std::string& path, std::uint64_t size, std::uint64_t index) {
  const std::uint64_t offset = index * Pieces::kSize;
  const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(Pieces::kSize, size - offset));
  try {
    if (Spooled* spooled = FindSpooled(file, size)) {
      if (!spooled->spool.Has(offset + count)) Select(file, path, size);
      return ReadSpooled(*spooled, offset, count);
    }
    Select(file, path, size);
    if (NeedsSpool(offset)) {
      if (spools_.size() == kMostSpools) spools_.pop_back();
      spools_.push_front({file, size, Spool()});
      return ReadSpooled(spools_.front(), offset, count);
    }
    if (count == Pieces::kSize && offset + count == size && kelva::KnownOrder(camera_) == kelva::OffsetOrder::kAny) {
      return ReadLast(offset);
    }
    // With room for two bytes beyond the end, the last piece needs no command more to find the end.
    auto bytes = std::make_shared<FileBytes>(std::min(count + 2, Pieces::kSize));
    bytes->Cut(reader_->Read(offset, bytes->All()));
    return bytes;
  } catch (...) {
    reader_.reset();
    throw;
  }
}

// A full last piece. The reader would ask with one command more whether the file ends there.
Pieces::Piece Reading::ReadLast(std::uint64_t offset) {
  auto bytes = std::make_shared<FileBytes>(Pieces::kSize);
  _VscCdb cdb = kelva::Block(kelva::Operation::kReadChunk, kelva::read_chunk::kSelected);
  kelva::StoreU32(cdb.bytes + kelva::at::kReadOffset, static_cast<std::uint32_t>(offset));
  int moved = static_cast<int>(Pieces::kSize);
  if (!camera_->Transfer(cdb, kelva::kFromCamera, moved, bytes->All().data(), true)) {
    throw std::runtime_error("the camera refused a read");
  }
  if (moved != static_cast<int>(Pieces::kSize)) {
    throw std::runtime_error("another number of bytes came than was asked for");
  }
  return bytes;
}

// The question costs what the jump would cost.
bool Reading::NeedsSpool(std::uint64_t offset) {
  if (offset == reader_->Position() || offset == 0 || !reader_->ReadsForwardOnly()) return false;
  if (!std::exchange(toldForwardOnly_, true)) onForwardOnly_();
  return true;
}

Reading::Spooled* Reading::FindSpooled(std::uint64_t file, std::uint64_t size) {
  const auto same = [&](const Spooled& one) { return one.file == file; };
  const auto found = std::find_if(spools_.begin(), spools_.end(), same);
  if (found == spools_.end()) return nullptr;
  if (found->size != size) {
    spools_.erase(found);
    return nullptr;
  }
  spools_.splice(spools_.begin(), spools_, found);
  return &*found;
}

Pieces::Piece Reading::ReadSpooled(Spooled& spooled, std::uint64_t offset, std::size_t count) {
  std::vector<char> bytes(Pieces::kSize);
  while (!spooled.spool.Has(offset + count)) {
    const std::size_t came = reader_->Read(spooled.spool.Size(), bytes);
    if (came == 0) throw std::runtime_error("the file ended early");
    spooled.spool.Append(std::span(bytes).first(came));
  }
  auto piece = std::make_shared<FileBytes>(count);
  spooled.spool.Read(offset, piece->All());
  return piece;
}

void Reading::Drop(std::uint64_t file) {
  spools_.remove_if([file](const Spooled& one) { return one.file == file; });
  if (file_ == file) reader_.reset();
}

}  // namespace apps
