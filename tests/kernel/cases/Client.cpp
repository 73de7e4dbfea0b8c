// One operation of the library on one camera of the machine, in a process of its own; what became of it is one line:
//   data HASH SIZE     it gave this; the bytes are left in /tmp/answer, one line of hexadecimal digits for each record
//   neutral            it gave the value that stands for nothing
//   error TYPE TEXT    it threw
// kelva-kernel-client SERIAL OPERATION [ARGUMENT...]

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <fstream>
#include <iostream>
#include <map>

#include "darwin/registry/Registry.h"
#include "darwin/udev/UdevSource.h"
#include "src/usb/osx/OsxCamera.h"
#include "src/wifi/Camera.h"
#include "tests/kernel/cases/ChunkLoops.h"
#include "tests/kernel/cases/Digest.h"
#include "tests/kernel/cases/SignalStorm.h"

namespace {

using Arguments = std::vector<std::string>;
using Bytes = std::vector<char>;

// Whole files are not written out again.
constexpr std::size_t kLongestRecord = 1024;

// What an operation gave: its records, or one record for what has none; empty for its neutral value.
using Answer = std::vector<Bytes>;
using Operation = Answer (*)(Camera&, const Arguments&);

Answer Whole(Bytes bytes) {
  return bytes.empty() ? Answer{} : Answer{std::move(bytes)};
}

template <typename Value>
void Append(Bytes& bytes, const Value& value) {
  static_assert(std::is_trivially_copyable_v<Value>);
  const auto* begin = reinterpret_cast<const char*>(&value);
  bytes.insert(bytes.end(), begin, begin + sizeof(value));
}

Answer Objects(const std::vector<_Sha1obj>& objects) {
  Answer answer;
  for (const _Sha1obj& object : objects) {
    Bytes bytes(object.name.begin(), object.name.end());
    bytes.insert(bytes.end(), object.data.begin(), object.data.end());
    answer.push_back(std::move(bytes));
  }
  return answer;
}

Answer Ready(Camera& camera, const Arguments&) {
  return Whole(camera.IsReady() ? Bytes{1} : Bytes{});
}

Answer Battery(Camera& camera, const Arguments&) {
  Bytes bytes;
  Append(bytes, camera.BatteryLevel());
  return Whole(bytes);
}

Answer Information(Camera& camera, const Arguments&) {
  _VscCdbCameraInformation information{};
  if (!camera.CameraInformation(information)) return {};
  Bytes bytes;
  Append(bytes, information);
  return Whole(bytes);
}

Answer Catalogue(Camera& camera, const Arguments&) {
  Answer answer;
  for (const DcfObj& picture : camera.GetDcf()) Append(answer.emplace_back(), picture);
  return answer;
}

Answer Tree(Camera& camera, const Arguments& arguments) {
  std::vector<std::pair<std::string, long long>> files;
  camera.TraverseDir(arguments.at(0).c_str(), files);
  std::sort(files.begin(), files.end());
  Answer answer;
  for (const auto& [path, size] : files) {
    Bytes& bytes = answer.emplace_back(path.begin(), path.end());
    Append(bytes, size);
  }
  return answer;
}

Answer Read(Camera& camera, const Arguments& arguments) {
  return Whole(camera.ReadFile(arguments.at(0).c_str(), nullptr, nullptr, true));
}

// Writes a file, and says "data" with what was to be written.
Answer Write(Camera& camera, const Arguments& arguments) {
  Bytes bytes(std::stoul(arguments.at(1)));
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 31 + i / 251);
  camera.WriteFile(arguments.at(0).c_str(), bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
  return Whole(std::move(bytes));
}

Answer Batch(Camera& camera, const Arguments& arguments) {
  return Objects(camera.ReadFilesBySha1(arguments, std::vector<std::string>(arguments.size()), nullptr, nullptr, true));
}

Answer Calibration(Camera& camera, const Arguments&) {
  return Objects(camera.ReadCalibration(nullptr, nullptr, true));
}

Answer CrashLogs(Camera& camera, const Arguments&) {
  return Objects(camera.ReadCrashLogs(nullptr, nullptr, false, true));
}

_VscCdb BlockOf(const std::string& digits) {
  _VscCdb block{};
  for (std::size_t i = 0; i < sizeof(block) && 2 * i + 1 < digits.size(); ++i) {
    const auto value = static_cast<unsigned char>(std::stoul(digits.substr(2 * i, 2), nullptr, 16));
    std::memcpy(reinterpret_cast<char*>(&block) + i, &value, 1);
  }
  return block;
}

// One command as it stands, and its answer: BLOCK (hexadecimal) SIZE.
Answer Raw(Camera& camera, const Arguments& arguments) {
  Bytes bytes(std::stoul(arguments.at(1)));
  int size = static_cast<int>(bytes.size());
  if (!camera.Transfer(BlockOf(arguments.at(0)), size == 0 ? 0 : 2, size, bytes.data(), true)) return {};
  bytes.resize(static_cast<std::size_t>(size));
  std::cout << "answer ";
  for (const char byte : bytes) std::cout << HexOf(static_cast<unsigned char>(byte));
  std::cout << "\n";
  return Whole(std::move(bytes));
}

// COUNT short commands under a signal every millisecond.
Answer Storm(Camera& camera, const Arguments& arguments) {
  const SignalStorm storm;
  Bytes bytes;
  for (unsigned long i = std::stoul(arguments.at(0)); i > 0; --i) bytes.push_back(camera.IsReady() ? 1 : 0);
  std::cout << "signals " << storm.delivered() << "\n";
  return Whole(std::move(bytes));
}

// The selected data in chunks: SIZE.
Answer Chunks(Camera& camera, const Arguments& arguments) {
  const auto size = static_cast<std::uint32_t>(std::stoul(arguments.at(0)));
  std::cout << "nanoseconds " << TimeTransfers(camera, size) << "\n";
  return {{1}};
}

// The same without the library: SIZE NODE.
Answer Bare(Camera& camera, const Arguments& arguments) {
  const auto size = static_cast<std::uint32_t>(std::stoul(arguments.at(0)));
  camera.Close();
  std::cout << "nanoseconds " << TimeBareLoop(arguments.at(1), size) << "\n";
  return {{1}};
}

// As "bare", with no copy either: SIZE NODE.
Answer Mapped(Camera& camera, const Arguments& arguments) {
  const auto size = static_cast<std::uint32_t>(std::stoul(arguments.at(0)));
  camera.Close();
  std::cout << "nanoseconds " << TimeMappedLoop(arguments.at(1), size) << "\n";
  return {{1}};
}

// The copies on the way, each by itself: SIZE.
Answer Copies(Camera&, const Arguments& arguments) {
  std::cout << "nanoseconds " << TimeCopies(static_cast<std::uint32_t>(std::stoul(arguments.at(0)))) << "\n";
  return {{1}};
}

Answer Gathering(Camera&, const Arguments& arguments) {
  std::cout << "nanoseconds " << TimeGathering(static_cast<std::uint32_t>(std::stoul(arguments.at(0)))) << "\n";
  return {{1}};
}

// A whole file: PATH.
Answer WholeFile(Camera& camera, const Arguments& arguments) {
  std::cout << "nanoseconds " << TimeReadFile(camera, arguments.at(0)) << "\n";
  return {{1}};
}

const std::map<std::string, Operation> kOperations{
    {"ready", Ready},
    {"battery", Battery},
    {"information", Information},
    {"catalogue", Catalogue},
    {"tree", Tree},
    {"read", Read},
    {"write", Write},
    {"batch", Batch},
    {"raw", Raw},
    {"storm", Storm},
    {"calibration", Calibration},
    {"crash-logs", CrashLogs},
    {"chunks", Chunks},
    {"bare", Bare},
    {"mapped", Mapped},
    {"copies", Copies},
    {"gathering", Gathering},
    {"whole-file", WholeFile},
};

boost::shared_ptr<Camera> Opened(const char* serial) {
  darwin::Registry::Shared().SetSource(darwin::MakeUdevSource());
  boost::shared_ptr<Camera> camera = Camera::GetCamera(serial, "", false, false);
  if (!camera) throw CameraError("No such camera.");
  if (!camera->Open()) throw CameraError("The camera cannot be opened.");
  return camera;
}

// The records, for who wants to look at them, and their sum.
std::string Describe(const Answer& answer) {
  if (answer.empty()) return "neutral";
  std::ofstream file("/tmp/answer");
  Bytes all;
  for (const Bytes& record : answer) {
    all.insert(all.end(), record.begin(), record.end());
    if (record.size() > kLongestRecord) continue;
    for (const char byte : record) file << HexOf(static_cast<unsigned char>(byte));
    file << "\n";
  }
  return "data " + DigestOf(all) + " " + std::to_string(all.size());
}

std::string OneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

int Run(const char* serial, const std::string& name, const Arguments& arguments) {
  try {
    const auto camera = Opened(serial);
    std::cout << Describe(kOperations.at(name)(*camera, arguments)) << "\n";
  } catch (const CameraTransferError& error) {
    std::cout << "error CameraTransferError " << OneLine(error.what()) << "\n";
  } catch (const CameraError& error) {
    std::cout << "error CameraError " << OneLine(error.what()) << "\n";
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3 || !kOperations.contains(argv[2])) {
    std::cerr << "usage: kelva-kernel-client SERIAL OPERATION [ARGUMENT...]\n";
    return 2;
  }
  return Run(argv[1], argv[2], Arguments(argv + 3, argv + argc));
}
