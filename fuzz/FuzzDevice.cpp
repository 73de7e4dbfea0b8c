// The virtual camera's command decoder: a sequence of commands, faults among them, over a small storage folder that is
// made anew for each.

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "fuzz/InputReader.h"
#include "vcam/camera/VirtualCamera.h"

namespace {

namespace fs = std::filesystem;

constexpr int kMostCommands = 32;
constexpr std::uint32_t kMostAsked = 64 * 1024;

/// A folder of this process, removed at its end.
class Storage {
 public:
  Storage() : path_(fs::temp_directory_path() / ("kelva-fuzz-" + std::to_string(::getpid()))) {}
  ~Storage() { fs::remove_all(path_); }

  const fs::path& Fresh() {
    fs::remove_all(path_);
    Write("DCIM/100ABCDE/IMG_0001.JPG", "jpeg");
    Write("CRASH/a.log", "crash");
    Write("CALIB/gain", "1");
    return path_;
  }

 private:
  void Write(const fs::path& name, const std::string& text) {
    fs::create_directories((path_ / name).parent_path());
    std::ofstream(path_ / name) << text;
  }

  const fs::path path_;
};

wire::Command NextCommand(InputReader& input) {
  wire::Command command;
  // The operation is one of the register's most of the time.
  const std::uint8_t operation = input.Byte();
  command.cdb[0] = operation < 0xF0 ? static_cast<std::uint8_t>(0xC0 + operation % 7) : operation;
  command.cdb[2] = input.Byte();
  const auto parameters = input.Bytes(4);
  std::copy(parameters.begin(), parameters.end(), command.cdb.begin() + 3);
  command.direction = static_cast<wire::Direction>(input.Byte() % 3);
  command.length = input.Byte() * (kMostAsked / 255);
  if (command.direction == wire::Direction::kToCamera) {
    command.data = input.Bytes(input.Byte());
    command.length = static_cast<std::uint32_t>(command.data.size());
  }
  return command;
}

void Check(const wire::Command& command, const wire::Reply& reply) {
  // A surplus fault is the one reason for more than was asked, and it is two bytes at most.
  if (command.direction == wire::Direction::kFromCamera && reply.data.size() > std::size_t{command.length} + 2) {
    __builtin_trap();
  }
  if (command.direction == wire::Direction::kNone && !reply.data.empty()) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Storage storage;
  InputReader input(data, size);
  vcam::Options options;
  options.serial = "FUZZ";
  options.storage = storage.Fresh();
  vcam::VirtualCamera camera(options);
  for (int i = 0; i < kMostCommands && !input.AtEnd(); ++i) {
    if (const std::uint8_t fault = input.Byte(); fault < vcam::AllFaults().size()) {
      camera.Arm({vcam::AllFaults()[fault], 1});
    }
    const wire::Command command = NextCommand(input);
    Check(command, camera.Execute(command));
  }
  return 0;
}
