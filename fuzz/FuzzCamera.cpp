// A whole camera over a transport whose answers the input scripts. The first byte chooses the operation, the second the
// chunk size and the switches, then each transfer takes one answer from the input.

#include <algorithm>
#include <string>
#include <vector>

#include "fuzz/InputReader.h"
#include "src/wifi/FatalAssertion.h"
#include "src/wifi/FileReader.h"
#include "src/wifi/testing/PlainCamera.h"

namespace {

/// The defined stop of the process, which is no finding.
struct DefinedStop {};

constexpr std::size_t kMostAnswered = 1024 * 1024;
// A walk returns the whole path of every file, so its result grows with depth times entries, and the tree is trusted to be
// finite. The camera refuses a path longer than this, as a real one does: a mebibyte of folders inside of each other, each
// in the one before, would be gibibytes of paths.
constexpr int kLongestPath = 260;

class HostileCamera final : public wifi_testing::PlainCamera {
 public:
  HostileCamera(InputReader& input, int chunkSize) : PlainCamera(chunkSize, 64), input_(input) {}

  bool CompareSn(const char*) const override { return true; }

  /// One answer: a kind, and for some kinds a number. What is reported as moved need not be what was written.
  bool Transfer(const _VscCdb&, int direction, int& size, char* buffer, bool) override {
    const std::uint8_t kind = input_.Byte();
    if (answered_ >= kMostAnswered || (input_.AtEnd() && kind == 0)) throw CameraTransferError("gone");
    if (direction != 2) return kind != 1 && size <= kLongestPath;
    return Answer(kind, size, buffer);
  }

 private:
  bool Answer(std::uint8_t kind, int& size, char* buffer) {
    switch (kind % 8) {
      case 0:  // a full answer, repeated from few bytes
        return Fill(size, buffer, input_.Bytes(8), size);
      case 1:
        return false;
      case 2:
        throw CameraTransferError("scripted");
      case 3:  // fewer bytes than asked
        return Fill(size, buffer, input_.Bytes(input_.Byte()), static_cast<int>(input_.Byte()));
      case 4:  // a count that is a lie
        return Fill(size, buffer, input_.Bytes(input_.Byte()), static_cast<int>(input_.Word()));
      default: {  // the next bytes as they stand
        const auto bytes = input_.Bytes(std::size_t{input_.Byte()} << (kind % 8 == 6 ? 4 : 0));
        return Fill(size, buffer, bytes, static_cast<int>(bytes.size()));
      }
    }
  }

  bool Fill(int& size, char* buffer, std::span<const std::uint8_t> bytes, int moved) {
    const auto capacity = static_cast<std::size_t>(std::max(size, 0));
    for (std::size_t i = 0; i < capacity && !bytes.empty(); ++i) buffer[i] = static_cast<char>(bytes[i % bytes.size()]);
    answered_ += capacity + 1;
    size = moved;
    return true;
  }

  InputReader& input_;
  std::size_t answered_ = 0;
};

void Count(void* context, float fraction) {
  ++*static_cast<int*>(context);
  if (!(fraction >= 0)) __builtin_trap();
}

/// Each body lies wholly in what arrived, so it can be read and has the announced size.
void CheckFiles(const std::vector<_Sha1obj>& files) {
  for (const _Sha1obj& file : files) {
    if (file.data.empty() || file.data.size() != file.size) __builtin_trap();
  }
}

void ReadPictures(Camera& camera, void* context) {
  const std::vector<DcfObj> pictures = camera.GetDcf();
  for (std::size_t i = 0; i < std::min<std::size_t>(pictures.size(), 4); ++i) {
    Camera::DcfFilename(pictures[i], 1 + static_cast<int>(i));
    camera.ReadFile(pictures[i], 1 + static_cast<int>(i), Count, context, true);
    camera.DeleteDcfObject(pictures[i]);
  }
}

void RunStatus(Camera& camera) {
  camera.IsReady();
  camera.MonitorCmd("line");
  camera.GetTime();
  camera.GetDoneCmdCount();
  camera.BatteryLevel();
  _ManualControlsState state{};
  camera.GetManualControlsState(state);
  float progress = 0;
  bool first = false;
  bool second = false;
  camera.UpgradeStatus(progress, first, second);
}

void RunWrites(Camera& camera, void* context) {
  const std::vector<char> image(5000, 'w');
  camera.WriteFile("I:\\A", image.data(), static_cast<int>(image.size()), Count, context);
  camera.Upgrade(image.data(), static_cast<int>(image.size()), Count, context);
  camera.DeleteFile("I:\\A");
  camera.DeleteBatch({"k1", "k2"}, true);
  camera.ReadCrashLogs(Count, context, false, true);
}

/// Any parts of a file, in pieces of any size. Nothing here may stop the process.
void ReadPieces(Camera& camera, InputReader& input) {
  kelva::FileReader reader({&camera, [](Camera*) {}}, "I:\\A");
  for (int i = 0; i < 8; ++i) {
    const std::uint8_t choice = input.Byte();
    std::vector<char> piece(std::size_t{1} << choice % 13);
    const std::size_t count = (choice & 0x10) != 0 ? reader.ReadOn(piece) : reader.Read(input.Word(), piece);
    if (count > piece.size() || reader.Position() > reader.Size()) __builtin_trap();
    if ((choice & 0x20) != 0) reader.Select();
    if ((choice & 0x40) != 0) reader.ReadsForwardOnly();
  }
}

void RunSettings(Camera& camera) {
  camera.SetTime({});
  camera.CaptureImage(true);
  camera.MonitorCmdSingleChar("c");
  camera.MonitorKnockCmd();
  camera.SetWifiSSID(_VscWifiType{}, "name");
  camera.SetWifiPassphrase(_VscWifiType{}, "passphrase");
  camera.SetWifiAuthType(_VscWifiType{}, _VscWifiAuthType{});
  camera.SetManualControl(1, "value");
  camera.DisableWifi(true);
  camera.Reboot();
}

void Run(Camera& camera, std::uint8_t operation, InputReader& input) {
  int calls = 0;
  switch (operation % 13) {
    case 0:
      camera.ReadFile("I:\\A", Count, &calls, true);
      break;
    case 1:
      ReadPictures(camera, &calls);
      break;
    case 2:
      camera.ReadDir("I:\\");
      break;
    case 3: {
      std::vector<std::pair<std::string, long long>> files;
      camera.TraverseDir("I:", files);
      break;
    }
    case 4:
      CheckFiles(camera.ReadCrashLogs(Count, &calls, true, true));
      break;
    case 5:
      CheckFiles(camera.ReadCalibration(Count, &calls, true));
      break;
    case 6:
      CheckFiles(camera.ReadFilesBySha1({"k1", "k2", "k3"}, {"a", "b", "c"}, Count, &calls, true));
      break;
    case 7:
      CheckFiles(camera.ReadCompressedRaw("key", Count, &calls, true));
      break;
    case 8: {
      _VscCdbCameraInformation info{};
      camera.CameraInformation(info);
      for (bool more = true; more;) camera.ConsoleLog(more);
      break;
    }
    case 9:
      RunStatus(camera);
      break;
    case 10:
      RunWrites(camera, &calls);
      break;
    case 11:
      RunSettings(camera);
      break;
    default:
      ReadPieces(camera, input);
  }
}

}  // namespace

void kelva::FailAssertion(const char*, const char*) {
  throw DefinedStop();
}

std::vector<boost::shared_ptr<Camera>> Camera::EnumerateCameras(bool, std::string, bool, int) {
  return {};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  InputReader input(data, size);
  const std::uint8_t operation = input.Byte();
  const std::uint8_t setting = input.Byte();
  constexpr int kChunkSizes[] = {1, 16, 700, 4096};
  Camera::throwExceptions_ = (setting & 4) != 0;
  HostileCamera camera(input, kChunkSizes[setting % 4]);
  try {
    Run(camera, operation, input);
  } catch (const CameraError&) {
  } catch (const DefinedStop&) {
  }
  return 0;
}
