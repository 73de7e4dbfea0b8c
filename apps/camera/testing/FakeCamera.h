#ifndef KELVA_APPS_CAMERA_TESTING_FAKE_CAMERA_H_
#define KELVA_APPS_CAMERA_TESTING_FAKE_CAMERA_H_

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "src/wifi/VscRegister.h"
#include "src/wifi/testing/PlainCamera.h"

namespace apps {

/// A camera for tests: files in memory, in one folder, and switches for what can go wrong. The one command that it answers
/// is the listing of a folder, with what ReadDir gives.
class FakeCamera : public wifi_testing::PlainCamera {
 public:
  explicit FakeCamera(std::string serial = "") : serial_(std::move(serial)) { open = false; }

  bool Transfer(const _VscCdb& cdb, int, int& size, char* buffer, bool) override {
    const auto operation = kelva::Operation{static_cast<std::uint8_t>(cdb.bytes[0])};
    const auto subCode = static_cast<std::uint8_t>(cdb.bytes[kelva::at::kSubCode]);
    if (operation == kelva::Operation::kSelect && subCode == kelva::select::kDirectory) {
      listing_ = Encode(ReadDir(buffer));
      return true;
    }
    if (operation != kelva::Operation::kReadChunk) return false;
    const std::string piece = listing_.substr(0, static_cast<std::size_t>(size));
    listing_.erase(0, piece.size());
    piece.copy(buffer, piece.size());
    size = static_cast<int>(piece.size());
    return true;
  }
  bool CompareSn(const char* serial) const override { return serial_ == serial; }

  std::vector<CameraDirent> ReadDir(const char* path) override {
    std::vector<CameraDirent> entries = {{".", 0, 0x10}, {"LABEL", 0, 0x08}};
    if (folder != path) return entries;
    for (const auto& [name, text] : files) entries.push_back({name, static_cast<int>(text.size()) + lie, 0x20});
    for (const std::string& name : folders) entries.push_back({name, 0, 0x10});
    return entries;
  }
  using Camera::ReadFile;
  std::vector<char> ReadFile(const char* path, void (*progress)(void*, float), void* context, bool flag) override {
    ++reads;
    lastFlag = flag;
    if (onRead) onRead(path);
    if (progress != nullptr) progress(context, 0);
    while (endless) progress(context, 1);
    const auto found = files.find(NameIn(path));
    if (found == files.end()) return {};
    return {found->second.begin(), found->second.end()};
  }
  void WriteFile(const char* path, const char* data, int length, void (*progress)(void*, float),
                 void* context) override {
    files[NameIn(path)] = std::string(data, static_cast<std::size_t>(length)) + damage;
    if (writeBreaks) throw CameraTransferError("broken off");
    if (progress != nullptr) progress(context, 0);
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
  int reads = 0;
  bool lastFlag = false;     ///< that the last read was sent with
  int lie = 0;               ///< added to every size in a listing
  std::string damage;        ///< added to every file that is written
  std::string forbidden;     ///< deleting this one is an error
  bool endless = false;      ///< a read goes on until its progress function throws
  bool writeBreaks = false;  ///< writing ends in an error, half of it done
  bool stubborn = false;
  bool refuses = false;
  std::function<void(const std::string& path)> onRead;    ///< before anything is sent
  std::function<void(const std::string& path)> onDelete;  ///< before anything is deleted

 private:
  /// A count behind four bytes; for each entry attributes, size and the place of its name; the names.
  static std::string Encode(const std::vector<CameraDirent>& entries) {
    const auto word = [](std::size_t value) {
      std::string bytes;
      for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift);
      return bytes;
    };
    std::string table = word(0) + word(entries.size());
    std::string names;
    for (const CameraDirent& entry : entries) {
      table += word(static_cast<std::size_t>(entry.attributes)) + word(static_cast<std::size_t>(entry.size)) +
               word(8 + 12 * entries.size() + names.size());
      names += entry.name + '\0';
    }
    return table + names;
  }
  static std::string NameIn(const std::string& path) { return path.substr(path.rfind('\\') + 1); }

  std::string serial_;
  std::string listing_;  // what of it was not sent yet
};

}  // namespace apps

#endif  // KELVA_APPS_CAMERA_TESTING_FAKE_CAMERA_H_
