// The register of commands in words.
#include "apps/trace/CommandName.h"

#include <cstdint>

#include "src/wifi/VscRegister.h"

namespace apps {
namespace {

using kelva::Operation;

struct Row {
  Operation operation;
  std::uint8_t subCode;
  std::string_view name;
};

// The operations with a sub-code.
constexpr Row kRows[] = {
    {Operation::kAction, kelva::action::kCaptureImage, "capture"},
    {Operation::kAction, kelva::action::kDeleteFile, "delete file"},
    {Operation::kAction, kelva::action::kEndUpgrade, "end upgrade"},
    {Operation::kAction, kelva::action::kReboot, "reboot"},
    {Operation::kAction, kelva::action::kSetTime, "set time"},
    {Operation::kAction, kelva::action::kDeletePicture, "delete picture"},
    {Operation::kAction, kelva::action::kDeleteBatch, "delete batch"},
    {Operation::kAction, kelva::action::kWifiNameType0, "set network name 0"},
    {Operation::kAction, kelva::action::kWifiNameType1, "set network name 1"},
    {Operation::kAction, kelva::action::kWifiPassphraseType0, "set passphrase 0"},
    {Operation::kAction, kelva::action::kWifiPassphraseType1, "set passphrase 1"},
    {Operation::kAction, kelva::action::kWifiAuthType, "set authentication"},
    {Operation::kAction, kelva::action::kManualControl, "set control"},
    {Operation::kAction, kelva::action::kDisableWifi, "switch Wi-Fi off"},
    {Operation::kAction, kelva::action::kMonitorSingleChar, "monitor character"},
    {Operation::kAction, kelva::action::kMonitorLine, "monitor line"},
    {Operation::kSelect, kelva::select::kInformation, "select information"},
    {Operation::kSelect, kelva::select::kFile, "select file"},
    {Operation::kSelect, kelva::select::kCatalogue, "select catalogue"},
    {Operation::kSelect, kelva::select::kDirectory, "select folder"},
    {Operation::kSelect, kelva::select::kBatch, "select batch"},
    {Operation::kSelect, kelva::select::kCalibration, "select calibration"},
    {Operation::kSelect, kelva::select::kCompressedRaw, "select raw data"},
    {Operation::kSelect, kelva::select::kCrashLogs, "select crash logs"},
    {Operation::kEndWrite, kelva::kEndWriteFile, "end write"},
    {Operation::kReadChunk, kelva::read_chunk::kBundle, "read bundle"},
    {Operation::kReadChunk, kelva::read_chunk::kSelected, "read chunk"},
    {Operation::kQuery, kelva::query::kSelectedSize, "size"},
    {Operation::kQuery, kelva::query::kUpgradeStatus, "upgrade status"},
    {Operation::kQuery, kelva::query::kConsoleLog, "console log"},
    {Operation::kQuery, kelva::query::kTime, "time"},
    {Operation::kQuery, kelva::query::kReady, "ready"},
    {Operation::kQuery, kelva::query::kDoneCommands, "completed commands"},
    {Operation::kQuery, kelva::query::kBattery, "battery"},
    {Operation::kQuery, kelva::query::kManualControls, "controls"},
};

}  // namespace

std::string_view CommandName(const _VscCdb& block) {
  const auto operation = static_cast<Operation>(block.bytes[kelva::at::kOperation]);
  if (operation == Operation::kBeginUpgrade) return "begin upgrade";
  if (operation == Operation::kWriteChunk) return "write chunk";
  const std::uint8_t subCode = block.bytes[kelva::at::kSubCode];
  const bool forWriting = block.bytes[kelva::at::kParameter] == kelva::kSelectForWriting;
  if (operation == Operation::kSelect && subCode == kelva::select::kFile && forWriting) return "select file to write";
  for (const Row& row : kRows) {
    if (row.operation == operation && row.subCode == subCode) return row.name;
  }
  return "unknown";
}

}  // namespace apps
