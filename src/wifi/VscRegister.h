#ifndef KELVA_WIFI_VSC_REGISTER_H_
#define KELVA_WIFI_VSC_REGISTER_H_

// The register of the vendor command set (VSC, vendor-specific command): every operation code and sub-code, once. The
// library and the virtual camera use it.

#include <cstdint>

namespace kelva {

/// Byte 0 of the command block.
enum class Operation : std::uint8_t {
  kAction = 0xC0,        ///< an action, with an optional data phase to the camera
  kBeginUpgrade = 0xC1,  ///< no sub-code; bytes 2-5 carry the image's length
  kSelect = 0xC2,        ///< selects a data set for later reading or writing
  kEndWrite = 0xC3,      ///< closes the file that is being written
  kReadChunk = 0xC4,     ///< byte 2 is a read_chunk sub-code; bytes 3-6 carry the offset
  kWriteChunk = 0xC5,    ///< no sub-code; bytes 2-5 carry the offset
  kQuery = 0xC6,         ///< a short answer from the camera
};

/// Byte 2 of an action.
namespace action {
inline constexpr std::uint8_t kCaptureImage = 0x00;
inline constexpr std::uint8_t kDeleteFile = 0x01;
inline constexpr std::uint8_t kEndUpgrade = 0x02;
inline constexpr std::uint8_t kReboot = 0x03;
inline constexpr std::uint8_t kSetTime = 0x04;
inline constexpr std::uint8_t kDeletePicture = 0x05;
inline constexpr std::uint8_t kDeleteBatch = 0x06;
inline constexpr std::uint8_t kWifiNameType0 = 0x07;
inline constexpr std::uint8_t kWifiNameType1 = 0x08;
inline constexpr std::uint8_t kWifiPassphraseType0 = 0x09;
inline constexpr std::uint8_t kWifiPassphraseType1 = 0x0A;
inline constexpr std::uint8_t kWifiAuthType = 0x0B;
inline constexpr std::uint8_t kManualControl = 0x0C;
inline constexpr std::uint8_t kDisableWifi = 0x0D;
inline constexpr std::uint8_t kMonitorSingleChar = 0xFE;
inline constexpr std::uint8_t kMonitorLine = 0xFF;
}  // namespace action

/// Byte 2 of a selection.
namespace select {
inline constexpr std::uint8_t kInformation = 0x00;
inline constexpr std::uint8_t kFile = 0x01;
inline constexpr std::uint8_t kCatalogue = 0x02;
inline constexpr std::uint8_t kDirectory = 0x03;
inline constexpr std::uint8_t kBatch = 0x05;
inline constexpr std::uint8_t kCalibration = 0x06;
inline constexpr std::uint8_t kCompressedRaw = 0x07;
inline constexpr std::uint8_t kCrashLogs = 0x08;
}  // namespace select

/// Byte 3 of the selection of a file.
inline constexpr std::uint8_t kSelectForWriting = 0x01;

/// Byte 2 of a chunk read: bundles (selections 0x05 to 0x08) and everything else (0x00 to 0x03).
namespace read_chunk {
inline constexpr std::uint8_t kBundle = 0x00;
inline constexpr std::uint8_t kSelected = 0x01;
}  // namespace read_chunk

/// Byte 2 of the end of a write.
inline constexpr std::uint8_t kEndWriteFile = 0x00;

/// Byte 2 of a query.
namespace query {
inline constexpr std::uint8_t kSelectedSize = 0x00;
inline constexpr std::uint8_t kUpgradeStatus = 0x01;
inline constexpr std::uint8_t kConsoleLog = 0x02;
inline constexpr std::uint8_t kTime = 0x03;
inline constexpr std::uint8_t kReady = 0x04;
inline constexpr std::uint8_t kDoneCommands = 0x05;
inline constexpr std::uint8_t kBattery = 0x06;
inline constexpr std::uint8_t kManualControls = 0x07;
}  // namespace query

/// Offsets of the parts of a command block.
namespace at {
inline constexpr unsigned kOperation = 0;
inline constexpr unsigned kSubCode = 2;
inline constexpr unsigned kParameter = 3;    ///< one byte that qualifies the sub-code
inline constexpr unsigned kReadOffset = 3;   ///< 32-bit, behind the sub-code
inline constexpr unsigned kWriteOffset = 2;  ///< 32-bit, in place of the sub-code
inline constexpr unsigned kUpgradeLength = 2;
}  // namespace at

/// The direction argument of `Camera::Transfer`.
inline constexpr int kNoData = 0;
inline constexpr int kToCamera = 1;
inline constexpr int kFromCamera = 2;

}  // namespace kelva

#endif  // KELVA_WIFI_VSC_REGISTER_H_
