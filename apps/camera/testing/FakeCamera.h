#ifndef KELVA_APPS_CAMERA_TESTING_FAKE_CAMERA_H_
#define KELVA_APPS_CAMERA_TESTING_FAKE_CAMERA_H_

#include <algorithm>
#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "src/wifi/DcfObj.h"
#include "src/wifi/LittleEndian.h"
#include "src/wifi/VscRegister.h"
#include "src/wifi/testing/PlainCamera.h"

namespace apps {

/// A camera for tests: files in memory, in one folder, and switches for what can go wrong. It answers the commands that
/// list a folder, read a file and write one; the rest of the command set goes past Transfer.
class FakeCamera : public wifi_testing::PlainCamera {
 public:
  explicit FakeCamera(std::string serial = "") : serial_(std::move(serial)) { open = false; }

  bool Transfer(const _VscCdb& cdb, int, int& size, char* buffer, bool flag) override {
    lastFlag = flag;
    switch (kelva::Operation{static_cast<std::uint8_t>(cdb.bytes[0])}) {
      case kelva::Operation::kSelect:
        return Select(cdb, buffer);
      case kelva::Operation::kQuery:
        Word(selected_.size()).copy(buffer, 4);
        return true;
      case kelva::Operation::kReadChunk:
        return Send(kelva::LoadU32(cdb.bytes + kelva::at::kReadOffset), size, buffer);
      case kelva::Operation::kWriteChunk:
        files[writing_].append(buffer, static_cast<std::size_t>(size));
        if (writeBreaks) throw CameraTransferError("broken off");
        return true;
      case kelva::Operation::kEndWrite:
        files[writing_] += damage;
        return true;
      default:
        return false;
    }
  }
  bool CompareSn(const char* serial) const override { return serial_ == serial; }

  std::vector<CameraDirent> ReadDir(const char* path) override {
    ++listings;
    std::vector<CameraDirent> entries = {{".", 0, 0x10}, {"LABEL", 0, 0x08}};
    if (folder != path) return entries;
    for (const auto& [name, text] : files) entries.push_back({name, static_cast<int>(text.size()) + lie, 0x20});
    for (const std::string& name : folders) entries.push_back({name, 0, 0x10});
    return entries;
  }
  bool DeleteFile(const char* path) override {
    if (onDelete) onDelete(path);
    if (forbidden == NameIn(path)) throw CameraTransferError("refused");
    if (!stubborn) files.erase(NameIn(path));
    return !refuses;
  }

  std::string folder = "I:";
  std::map<std::string, std::string> files;
  std::vector<std::string> folders;
  std::vector<DcfObj> catalogue;
  int reads = 0;
  int listings = 0;
  int lie = 0;                             ///< added to every size in a listing
  std::string damage;                      ///< added to every file that is written
  std::string forbidden;                   ///< deleting this one is an error
  bool lastFlag = false;                   ///< that the last command was sent with
  bool endless = false;                    ///< a read of a file goes on until somebody ends it
  std::size_t endsAt = std::string::npos;  ///< no more of a file is sent, whatever size was announced
  bool writeBreaks = false;                ///< writing ends in an error, half of it done
  bool stubborn = false;
  bool refuses = false;
  std::function<void(const std::string& path)> onRead;                ///< before anything is sent
  std::function<void(std::size_t offset, std::size_t count)> onSend;  ///< before a piece of a file is sent
  std::function<void(const std::string& path)> onDelete;              ///< before anything is deleted

 private:
  bool Select(const _VscCdb& cdb, const char* path) {
    if (cdb.bytes[kelva::at::kSubCode] == kelva::select::kCatalogue) {
      selected_ = Encode(catalogue);
    } else if (cdb.bytes[kelva::at::kSubCode] == kelva::select::kDirectory) {
      selected_ = Encode(ReadDir(path));
    } else if (cdb.bytes[kelva::at::kParameter] == kelva::kSelectForWriting) {
      writing_ = NameIn(path);
      files[writing_].clear();
    } else {
      ++reads;
      if (onRead) onRead(path);
      const auto found = files.find(NameIn(path));
      selected_ = found == files.end() ? "" : found->second;
      isListing_ = false;
      return true;
    }
    isListing_ = true;
    return true;
  }
  bool Send(std::size_t offset, int& size, char* buffer) const {
    if (endless && !isListing_) return true;
    if (onSend && !isListing_) onSend(offset, std::min(static_cast<std::size_t>(size), selected_.size()));
    const std::size_t end = isListing_ ? selected_.size() : std::min(selected_.size(), endsAt);
    const std::string piece =
        selected_.substr(std::min(offset, end), std::min(end - std::min(offset, end), static_cast<std::size_t>(size)));
    piece.copy(buffer, piece.size());
    size = static_cast<int>(piece.size());
    return true;
  }
  static std::string Word(std::size_t value) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift);
    return bytes;
  }
  /// A count behind four bytes; for each entry attributes, size and the place of its name; the names.
  static std::string Encode(const std::vector<CameraDirent>& entries) {
    std::string table = Word(0) + Word(entries.size());
    std::string names;
    for (const CameraDirent& entry : entries) {
      table += Word(static_cast<std::size_t>(entry.attributes)) + Word(static_cast<std::size_t>(entry.size)) +
               Word(8 + 12 * entries.size() + names.size());
      names += entry.name + '\0';
    }
    return table + names;
  }
  /// Version, size of a record and number of fields; type and place of each field; the records as they are in memory.
  static std::string Encode(const std::vector<DcfObj>& pictures) {
    constexpr std::size_t kPlaces[] = {0, 24, 28, 32, 36, 40, 44, 48, 96, 124};
    std::string bytes = Word(1) + Word(sizeof(DcfObj)) + Word(std::size(kPlaces));
    for (std::size_t type = 0; type < std::size(kPlaces); ++type) bytes += Word(type) + Word(kPlaces[type]);
    for (const DcfObj& picture : pictures) bytes.append(reinterpret_cast<const char*>(&picture), sizeof picture);
    return bytes;
  }
  static std::string NameIn(const std::string& path) { return path.substr(path.rfind('\\') + 1); }

  std::string serial_;
  std::string selected_;
  bool isListing_ = false;
  std::string writing_;
};

/// A camera of a test as its users hold it; the test outlives them.
inline boost::shared_ptr<Camera> Shared(FakeCamera& camera) {
  return {&camera, [](Camera*) {}};
}

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_TESTING_FAKE_CAMERA_H_
