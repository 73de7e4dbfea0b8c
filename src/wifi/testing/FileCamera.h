#ifndef KELVA_WIFI_TESTING_FILE_CAMERA_H_
#define KELVA_WIFI_TESTING_FILE_CAMERA_H_

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "CameraError.h"
#include "testing/Bytes.h"
#include "testing/PlainCamera.h"

namespace wifi_testing {

/// A camera with one file, whose path does not matter. It keeps a protocol in words: "select", "size", "read 512 at 0".
class FileCamera : public PlainCamera {
 public:
  explicit FileCamera(std::string bytes, int chunkSize = 65536) : PlainCamera(chunkSize), file(std::move(bytes)) {}

  bool WasDisconnected() override { return lost; }

  bool Transfer(const _VscCdb& cdb, int direction, int& size, char* buffer, bool) override {
    const int transfer = static_cast<int>(sent.size());
    sent.push_back(Words(cdb, size));
    if (transfer == throwsAt) throw CameraTransferError("cut");
    if (cdb.bytes[0] == 0xC2) position_ = 0;
    if (direction != 2) return true;
    if (cdb.bytes[0] == 0xC6) {
      const std::string answer = Le32(static_cast<std::uint32_t>(announced.value_or(file.size())));
      std::memcpy(buffer, answer.data(), 4);
      return true;
    }
    const std::size_t offset = forwardOnly ? position_ : Offset(cdb);
    if (refusesJumps && Offset(cdb) != position_) throw CameraTransferError("no jumps");
    const std::string piece = file.substr(std::min(offset, file.size()), static_cast<std::size_t>(size));
    std::memcpy(buffer, piece.data(), piece.size());
    position_ = offset + piece.size();
    size = static_cast<int>(piece.size());
    return true;
  }

  /// Returns the protocol and begins a new one.
  std::vector<std::string> TakeSent() { return std::exchange(sent, {}); }

  std::string file;
  std::optional<std::size_t> announced;  ///< nothing: the file's size
  bool forwardOnly = false;              ///< ignores offsets
  bool refusesJumps = false;
  bool lost = false;
  int throwsAt = -1;  ///< the index in `sent` of the transfer that fails
  std::vector<std::string> sent;

 private:
  static std::size_t Offset(const _VscCdb& cdb) {
    std::size_t offset = 0;
    for (int i = 3; i >= 0; --i) offset = offset << 8 | cdb.bytes[3 + i];
    return offset;
  }

  static std::string Words(const _VscCdb& cdb, int size) {
    if (cdb.bytes[0] == 0xC2) return "select";
    if (cdb.bytes[0] == 0xC6) return "size";
    return "read " + std::to_string(size) + " at " + std::to_string(Offset(cdb));
  }

  std::size_t position_ = 0;
};

}  // namespace wifi_testing

#endif  // KELVA_WIFI_TESTING_FILE_CAMERA_H_
