#ifndef KELVA_VCAM_DEVICE_REGISTER_H_
#define KELVA_VCAM_DEVICE_REGISTER_H_

#include <cstdint>

namespace vcam {

/// Byte 0 of the command block.
enum Operation : std::uint8_t {
  kOpAction = 0xC0,
  kOpUpgradeStart = 0xC1,
  kOpSelect = 0xC2,
  kOpWriteEnd = 0xC3,
  kOpReadChunk = 0xC4,
  kOpWriteChunk = 0xC5,
  kOpQuery = 0xC6,
};

/// Byte 2 of an action.
enum Action : std::uint8_t {
  kActionCapture = 0x00,
  kActionDeleteFile = 0x01,
  kActionUpgradeEnd = 0x02,
  kActionReboot = 0x03,
  kActionSetTime = 0x04,
  kActionDeletePicture = 0x05,
  kActionDeleteBatch = 0x06,
  kActionSsid0 = 0x07,
  kActionSsid1 = 0x08,
  kActionPassphrase0 = 0x09,
  kActionPassphrase1 = 0x0A,
  kActionAuthType = 0x0B,
  kActionManualControl = 0x0C,
  kActionWifiOff = 0x0D,
  kActionMonitorChar = 0xFE,
  kActionMonitorLine = 0xFF,
};

/// Byte 2 of a selection; what is read afterwards.
enum Selection : std::uint8_t {
  kSelectInformation = 0x00,
  kSelectFile = 0x01,
  kSelectCatalogue = 0x02,
  kSelectListing = 0x03,
  kSelectBatch = 0x05,
  kSelectCalibration = 0x06,
  kSelectCompressedRaw = 0x07,
  kSelectCrashLogs = 0x08,
};

/// Byte 2 of a query.
enum Query : std::uint8_t {
  kQuerySize = 0x00,
  kQueryUpgrade = 0x01,
  kQueryConsole = 0x02,
  kQueryTime = 0x03,
  kQueryReady = 0x04,
  kQueryDoneCount = 0x05,
  kQueryBattery = 0x06,
  kQueryManualControls = 0x07,
};

/// Byte 2 of a chunk read: bundles (selections 0x05 to 0x08) and everything else.
inline constexpr std::uint8_t kReadBundle = 0x00;
inline constexpr std::uint8_t kReadPlain = 0x01;
/// Byte 3 of kSelectFile: open for writing.
inline constexpr std::uint8_t kOpenForWriting = 0x01;

}  // namespace vcam

#endif  // KELVA_VCAM_DEVICE_REGISTER_H_
