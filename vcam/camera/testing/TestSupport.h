#ifndef KELVA_VCAM_CAMERA_TESTING_TEST_SUPPORT_H_
#define KELVA_VCAM_CAMERA_TESTING_TEST_SUPPORT_H_

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

#include "base/Bytes.h"
#include "base/testing/ScratchFolder.h"
#include "vcam/camera/VirtualCamera.h"

// What the tests of the virtual camera share: a scratch storage folder, and commands said in few words.

namespace vcam::test {

/// A storage folder of its own, deleted with the object.
class ScratchStorage {
 public:
  const std::filesystem::path& Path() const { return path_; }

  void Put(const std::string& name, std::string_view content) const {
    std::filesystem::create_directories((path_ / name).parent_path());
    std::ofstream(path_ / name, std::ios::binary) << content;
  }
  std::string Get(const std::string& name) const {
    std::ifstream file(path_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  bool Has(const std::string& name) const { return std::filesystem::exists(path_ / name); }

  Options CameraOptions(const std::string& serial = "K100") const {
    Options options;
    options.serial = serial;
    options.storage = path_;
    return options;
  }

 private:
  const base::ScratchFolder folder_;
  const std::filesystem::path path_ = folder_.Path();
};

inline wire::Command Block(std::initializer_list<std::uint8_t> bytes) {
  wire::Command command;
  std::copy(bytes.begin(), bytes.end(), command.cdb.begin());
  return command;
}

inline wire::Reply Ask(VirtualCamera& camera, std::initializer_list<std::uint8_t> cdb, std::uint32_t length) {
  wire::Command command = Block(cdb);
  command.direction = wire::Direction::kFromCamera;
  command.length = length;
  return camera.Execute(command);
}

inline wire::Reply Tell(VirtualCamera& camera, std::initializer_list<std::uint8_t> cdb) {
  return camera.Execute(Block(cdb));
}

inline wire::Reply Send(VirtualCamera& camera, std::initializer_list<std::uint8_t> cdb, const base::Bytes& data) {
  wire::Command command = Block(cdb);
  command.direction = wire::Direction::kToCamera;
  command.length = static_cast<std::uint32_t>(data.size());
  command.data = data;
  return camera.Execute(command);
}

inline base::Bytes Text(std::string_view text) {
  base::Bytes bytes(text.size() + 1);
  std::copy(text.begin(), text.end(), bytes.begin());
  return bytes;
}

inline wire::Reply SendText(VirtualCamera& camera, std::initializer_list<std::uint8_t> cdb, std::string_view text) {
  return Send(camera, cdb, Text(text));
}

inline std::string AsText(const base::Bytes& bytes) {
  return {bytes.begin(), bytes.end()};
}

}  // namespace vcam::test

#endif  // KELVA_VCAM_CAMERA_TESTING_TEST_SUPPORT_H_
