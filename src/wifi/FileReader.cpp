// Reads a file piece by piece, in any order where the camera honours offsets.

#include "FileReader.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "Command.h"
#include "LittleEndian.h"
#include "OffsetOrder.h"
#include "PictureFiles.h"
#include "TransferSizes.h"

namespace kelva {
namespace {

using Reason = FileReadError::Reason;

constexpr std::size_t kFirstChunk = 65536;
constexpr std::uint64_t kOffsets = std::uint64_t{1} << 32;  // an offset has 32 bits on the wire

std::string PathOrThrow(const DcfObj& picture, int type) {
  std::optional<std::string> path = PictureFilePath(picture, type);
  if (!path) throw FileReadError(Reason::kNoSuchType, NoSuchFileType(type));
  return *std::move(path);
}

std::string Count(std::uint64_t bytes) {
  return std::to_string(bytes) + " bytes";
}

}  // namespace

FileReadError::FileReadError(Reason reason, const std::string& message) : CameraError(message), reason_(reason) {}

FileReadError::~FileReadError() = default;

class FileReader::Core {
 public:
  Core(boost::shared_ptr<Camera> camera, const std::string& path) : camera_(std::move(camera)), path_(path) {
    size_ = SelectFile();
  }

  void Select() {
    const std::uint32_t size = SelectFile();
    if (size == size_) return;
    selected_ = false;
    throw FileReadError(Reason::kSizeChanged,
                        "FileReader: the file has " + Count(size) + " now, and had " + std::to_string(size_) + ".");
  }

  std::size_t Read(std::uint64_t offset, std::span<char> into) {
    CheckUsable();
    if (offset >= size_ || into.empty()) return 0;
    GoTo(offset);
    next_ = offset;
    std::size_t done = 0;
    while (done < into.size() && at_ < size_) {
      const std::size_t count = ReadPiece(into.subspan(done));
      done += count;
      next_ += count;
    }
    if (at_ >= size_) CheckEnd();
    return done;
  }

  bool ReadsForwardOnly() {
    CheckUsable();
    return !HonoursOffsets();
  }

  std::uint64_t Size() const { return size_; }
  std::uint64_t Position() const { return next_; }

 private:
  void CheckCamera() const {
    if (camera_->WasDisconnected()) throw FileReadError(Reason::kCameraLost, "FileReader: the camera has gone.");
    if (!camera_->IsOpen()) throw FileReadError(Reason::kNotOpen, "FileReader: the camera's session is not open.");
  }

  void CheckUsable() const {
    CheckCamera();
    if (selected_) return;
    throw FileReadError(Reason::kNotSelected,
                        "FileReader: an error ended the selection; Select() takes the file up again.");
  }

  [[noreturn]] void Fail(Reason reason, const std::string& message) {
    selected_ = false;
    throw FileReadError(reason, "FileReader: " + message);
  }

  std::uint32_t SelectFile() {
    CheckCamera();
    selected_ = false;
    camera_->ClearCancel(true);
    std::uint32_t size = 0;
    if (!SendText(*camera_, Block(Operation::kSelect, select::kFile), path_.c_str(), true) ||
        !AskSelectedSize(*camera_, true, size)) {
      Fail(Reason::kRefused, "the camera refused to select the file.");
    }
    at_ = 0;
    endSeen_ = false;
    selected_ = true;
    return size;
  }

  void GoTo(std::uint64_t offset) {
    if (offset == at_) return;
    if (offset != 0 ? HonoursOffsets() : IsKnownToHonourOffsets()) {
      at_ = offset;
      return;
    }
    if (offset < at_) Select();  // a read at 0 that follows a selection is in order on every camera
    while (at_ < offset) {
      const std::span<char> scratch = Scratch();
      ReadPiece(scratch.first(static_cast<std::size_t>(std::min<std::uint64_t>(scratch.size(), offset - at_))));
    }
  }

  /// One transfer at `at_`. Returns how many bytes of the file came, at least one.
  std::size_t ReadPiece(std::span<char> into) {
    const std::uint64_t left = size_ - at_;
    const std::size_t most = std::min(into.size(), ChunkSize());
    // With room for two surplus bytes this read finds the end. Otherwise it must not stop between the two.
    const auto asked = most >= left + 2 ? most : static_cast<std::size_t>(std::min<std::uint64_t>(most, left));
    const std::uint64_t moved = Ask(at_, into.first(asked));
    const std::uint64_t end = at_ + moved;
    if (end > size_ + 1 || (moved > asked && asked != left)) FailSurplus();
    if (moved < asked && end < size_) {
      Fail(Reason::kTruncated, "the file ended after " + std::to_string(end) + " of " + Count(size_) + ".");
    }
    endSeen_ = endSeen_ || moved != asked;
    at_ = end;
    return static_cast<std::size_t>(std::min(moved, left));
  }

  /// The last chunk came full, so the camera may have more.
  void CheckEnd() {
    while (!endSeen_ && at_ < kOffsets) {
      char surplus[kProofSize];
      const std::size_t asked = std::min(sizeof(surplus), ChunkSize());
      const std::uint64_t moved = Ask(at_, std::span(surplus, asked));
      at_ += moved;
      if (at_ > size_ + 1) FailSurplus();
      endSeen_ = moved < asked;
    }
  }

  [[noreturn]] void FailSurplus() {
    Fail(Reason::kSurplus, "more came than the " + Count(size_) + " that the camera announced.");
  }

  /// What the camera says it moved: perhaps more than was asked for.
  std::uint64_t Ask(std::uint64_t offset, std::span<char> into) {
    _VscCdb cdb = Block(Operation::kReadChunk, read_chunk::kSelected);
    StoreU32(cdb.bytes + at::kReadOffset, static_cast<std::uint32_t>(offset));
    int moved = static_cast<int>(into.size());
    selected_ = false;  // until the answer is there
    if (!camera_->Transfer(cdb, kFromCamera, moved, into.data(), true)) {
      Fail(Reason::kRefused, "the camera refused a read at " + std::to_string(offset) + ".");
    }
    selected_ = true;
    return static_cast<std::uint64_t>(std::max(moved, 0));
  }

  std::size_t ChunkSize() {
    const int size = TransferSizes::ChunkSize(*camera_);
    if (size <= 0) Fail(Reason::kRefused, "the camera's chunks have no size.");
    return static_cast<std::size_t>(size);
  }

  std::span<char> Scratch() {
    if (scratch_.empty()) scratch_.resize(kFirstChunk);
    return scratch_;
  }

  bool IsKnownToHonourOffsets() {
    if (order_ == OffsetOrder::kUnknown) order_ = KnownOrder(camera_);
    return order_ == OffsetOrder::kAny;
  }

  bool HonoursOffsets() {
    if (!IsKnownToHonourOffsets() && order_ == OffsetOrder::kUnknown) order_ = AskForProof();
    return order_ == OffsetOrder::kAny;
  }

  OffsetOrder AskForProof() {
    // Without a place to jump to this file is read forward, which says nothing about the camera.
    if (ChunkSize() < kProofSize || size_ < kLeastForProof) return OffsetOrder::kForwardOnly;
    const std::optional<std::size_t> place = ReadFirstChunk();
    Select();
    if (!place) return OffsetOrder::kForwardOnly;
    const OffsetOrder order = JumpsTo(*place);
    if (order != OffsetOrder::kAny) Select();
    if (order == OffsetOrder::kUnknown) return OffsetOrder::kForwardOnly;  // for this reader
    RememberOrder(camera_, order);
    return order;
  }

  std::optional<std::size_t> ReadFirstChunk() {
    if (at_ != 0) Select();
    const std::span<char> first =
        Scratch().first(static_cast<std::size_t>(std::min<std::uint64_t>(kFirstChunk, size_)));
    for (std::size_t done = 0; done < first.size();) done += ReadPiece(first.subspan(done));
    return ProofOffset(first);
  }

  /// From the start to `place` and back. The first chunk is in the scratch memory.
  OffsetOrder JumpsTo(std::size_t place) {
    try {
      return IsAsBefore(0) && IsAsBefore(place) && IsAsBefore(0) ? OffsetOrder::kAny : OffsetOrder::kForwardOnly;
    } catch (const CameraError&) {
      // A camera may refuse to jump, or have one bad moment. One that has gone also fails the selection that follows.
      return OffsetOrder::kUnknown;
    }
  }

  bool IsAsBefore(std::size_t offset) {
    char piece[kProofSize];
    const std::uint64_t moved = Ask(offset, piece);
    at_ = offset + moved;
    return moved == sizeof(piece) &&
           std::equal(piece, piece + sizeof(piece), scratch_.begin() + static_cast<std::ptrdiff_t>(offset));
  }

  const boost::shared_ptr<Camera> camera_;
  const std::string path_;
  std::uint64_t size_ = 0;
  bool selected_ = false;
  std::uint64_t at_ = 0;    // where a camera that ignores offsets stands
  bool endSeen_ = false;    // this selection was read up to a chunk that was not full
  std::uint64_t next_ = 0;  // where the caller stands
  OffsetOrder order_ = OffsetOrder::kUnknown;
  std::vector<char> scratch_;
};

FileReader::FileReader(boost::shared_ptr<Camera> camera, const std::string& path)
    : core_(std::make_unique<Core>(std::move(camera), path)) {}

FileReader::FileReader(boost::shared_ptr<Camera> camera, const DcfObj& picture, int type)
    : FileReader(std::move(camera), PathOrThrow(picture, type)) {}

FileReader::~FileReader() = default;
FileReader::FileReader(FileReader&& other) noexcept = default;
FileReader& FileReader::operator=(FileReader&& other) noexcept = default;

void FileReader::Select() {
  core_->Select();
}

std::uint64_t FileReader::Size() const {
  return core_->Size();
}

std::size_t FileReader::Read(std::uint64_t offset, std::span<char> into) {
  return core_->Read(offset, into);
}

std::size_t FileReader::ReadOn(std::span<char> into) {
  return Read(Position(), into);
}

std::uint64_t FileReader::Position() const {
  return core_->Position();
}

bool FileReader::ReadsForwardOnly() {
  return core_->ReadsForwardOnly();
}

}  // namespace kelva
