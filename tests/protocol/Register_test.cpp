// The register of docs/protocol.md against the code's: every code, and the name of the method that sends it.

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <stdexcept>

#include "src/wifi/Camera.h"
#include "src/wifi/VscRegister.h"
#include "tests/protocol/Document.h"

namespace {

constexpr int kNoSubCode = -1;

using Code = std::pair<int, int>;

Code Of(kelva::Operation operation, int subCode) {
  return {static_cast<int>(operation), subCode};
}

// The name of a public method of the library: without the method it does not compile.
#define KELVA_METHOD(name) (static_cast<void>(&Camera::name), std::string(#name))

/// Every operation code and sub-code of the code, and what the document calls it.
std::map<Code, std::string> CodeRegister() {
  using kelva::Operation;
  return {
      {Of(Operation::kAction, kelva::action::kCaptureImage), KELVA_METHOD(CaptureImage)},
      {Of(Operation::kAction, kelva::action::kDeleteFile), KELVA_METHOD(DeleteFile)},
      {Of(Operation::kAction, kelva::action::kEndUpgrade), KELVA_METHOD(Upgrade) + ", end"},
      {Of(Operation::kAction, kelva::action::kReboot), KELVA_METHOD(Reboot)},
      {Of(Operation::kAction, kelva::action::kSetTime), KELVA_METHOD(SetTime)},
      {Of(Operation::kAction, kelva::action::kDeletePicture), KELVA_METHOD(DeleteDcfObject)},
      {Of(Operation::kAction, kelva::action::kDeleteBatch), KELVA_METHOD(DeleteBatch)},
      {Of(Operation::kAction, kelva::action::kWifiNameType0), KELVA_METHOD(SetWifiSSID) + ", type 0"},
      {Of(Operation::kAction, kelva::action::kWifiNameType1), KELVA_METHOD(SetWifiSSID) + ", type 1"},
      {Of(Operation::kAction, kelva::action::kWifiPassphraseType0), KELVA_METHOD(SetWifiPassphrase) + ", type 0"},
      {Of(Operation::kAction, kelva::action::kWifiPassphraseType1), KELVA_METHOD(SetWifiPassphrase) + ", type 1"},
      {Of(Operation::kAction, kelva::action::kWifiAuthType), KELVA_METHOD(SetWifiAuthType)},
      {Of(Operation::kAction, kelva::action::kManualControl), KELVA_METHOD(SetManualControl)},
      {Of(Operation::kAction, kelva::action::kDisableWifi), KELVA_METHOD(DisableWifi)},
      {Of(Operation::kAction, kelva::action::kMonitorSingleChar), KELVA_METHOD(MonitorCmdSingleChar)},
      {Of(Operation::kAction, kelva::action::kMonitorLine), KELVA_METHOD(MonitorCmd)},
      {Of(Operation::kBeginUpgrade, kNoSubCode), KELVA_METHOD(Upgrade) + ", start"},
      {Of(Operation::kSelect, kelva::select::kInformation), "select the information record"},
      {Of(Operation::kSelect, kelva::select::kFile), "select a file, to be written when byte 3 is 0x01"},
      {Of(Operation::kSelect, kelva::select::kCatalogue), "select the picture catalogue"},
      {Of(Operation::kSelect, kelva::select::kDirectory), "select a directory listing"},
      {Of(Operation::kSelect, kelva::select::kBatch), "select a batch of files by key"},
      {Of(Operation::kSelect, kelva::select::kCalibration), "select the calibration bundle"},
      {Of(Operation::kSelect, kelva::select::kCompressedRaw), "select the compressed raw data of a key"},
      {Of(Operation::kSelect, kelva::select::kCrashLogs), "select the crash-log bundle"},
      {Of(Operation::kEndWrite, kelva::kEndWriteFile), "end of a write"},
      {Of(Operation::kReadChunk, kelva::read_chunk::kBundle), "read a chunk of a bundle (selections 0x05 to 0x08)"},
      {Of(Operation::kReadChunk, kelva::read_chunk::kSelected),
       "read a chunk of anything else (selections 0x00 to 0x03)"},
      {Of(Operation::kWriteChunk, kNoSubCode), "write a chunk"},
      {Of(Operation::kQuery, kelva::query::kSelectedSize), "size of what is selected"},
      {Of(Operation::kQuery, kelva::query::kUpgradeStatus), KELVA_METHOD(UpgradeStatus)},
      {Of(Operation::kQuery, kelva::query::kConsoleLog), KELVA_METHOD(ConsoleLog)},
      {Of(Operation::kQuery, kelva::query::kTime), KELVA_METHOD(GetTime)},
      {Of(Operation::kQuery, kelva::query::kReady), KELVA_METHOD(IsReady)},
      {Of(Operation::kQuery, kelva::query::kDoneCommands), KELVA_METHOD(GetDoneCmdCount)},
      {Of(Operation::kQuery, kelva::query::kBattery), KELVA_METHOD(BatteryLevel)},
      {Of(Operation::kQuery, kelva::query::kManualControls), KELVA_METHOD(GetManualControlsState)},
  };
}

#undef KELVA_METHOD

/// The constants of VscRegister.h, from its text: by the enumeration or namespace they stand in.
std::map<std::string, std::map<std::string, int>> ConstantsOfTheHeader() {
  static const std::regex opening(R"(^(?:enum class|namespace) (\w+).*\{)");
  static const std::regex constant(R"(\b(k\w+) = (\w+)[,;])");
  std::ifstream header(KELVA_VSC_REGISTER);
  std::map<std::string, std::map<std::string, int>> constants;
  std::string scope = "vsc";
  for (std::string line; std::getline(header, line);) {
    std::smatch match;
    if (std::regex_search(line, match, opening)) {
      scope = match[1];
    } else if (std::regex_search(line, match, constant)) {
      constants[scope][match[1]] = std::stoi(match[2], nullptr, 0);
    } else if (line.rfind('}', 0) == 0) {
      scope = "vsc";
    } else if (line.find("constexpr") != std::string::npos || line.rfind("  k", 0) == 0) {
      throw std::runtime_error("a constant whose value this test cannot read: " + line);
    }
  }
  return constants;
}

/// The register as the document has it.
std::map<Code, std::string> Documented() {
  std::map<Code, std::string> documented;
  const Document document = ReadDocument();
  for (const Row& row : document.tables.at("code")) {
    const int subCode = row[1] == "-" ? kNoSubCode : std::stoi(row[1], nullptr, 16);
    const bool isNew = documented.insert({{std::stoi(row[0], nullptr, 16), subCode}, row[2]}).second;
    EXPECT_TRUE(isNew) << row[0] << " " << row[1];
  }
  return documented;
}

TEST(ProtocolRegister, NamesEveryOperationAndSubCodeOfTheCode) {
  EXPECT_EQ(Documented(), CodeRegister());
}

TEST(ProtocolRegister, HasEveryOperationOfTheHeader) {
  std::set<int> documented;
  for (const auto& [code, name] : Documented()) documented.insert(code.first);
  const auto constants = ConstantsOfTheHeader();
  std::set<int> operations;
  for (const auto& [name, value] : constants.at("Operation")) operations.insert(value);
  EXPECT_EQ(documented, operations);
}

TEST(ProtocolRegister, HasEverySubCodeOfTheHeader) {
  auto constants = ConstantsOfTheHeader();
  std::set<Code> codes = {Of(kelva::Operation::kBeginUpgrade, kNoSubCode),
                          Of(kelva::Operation::kWriteChunk, kNoSubCode),
                          Of(kelva::Operation::kEndWrite, constants["vsc"].at("kEndWriteFile"))};
  for (const auto& [scope, operation] :
       std::map<std::string, kelva::Operation>{{"action", kelva::Operation::kAction},
                                               {"select", kelva::Operation::kSelect},
                                               {"read_chunk", kelva::Operation::kReadChunk},
                                               {"query", kelva::Operation::kQuery}}) {
    for (const auto& [name, value] : constants[scope]) codes.insert(Of(operation, value));
  }
  std::set<Code> documented;
  for (const auto& [code, name] : Documented()) documented.insert(code);
  EXPECT_EQ(documented, codes);
}

// A namespace or a lone constant that this file does not know may be a sub-code: it is not to pass unseen.
TEST(ProtocolRegister, KnowsEveryPlaceOfTheHeader) {
  std::set<std::string> places;
  std::set<std::string> lone;
  const auto constants = ConstantsOfTheHeader();
  for (const auto& [scope, ofScope] : constants) {
    places.insert(scope);
    for (const auto& [name, value] : ofScope) {
      if (scope == "vsc") lone.insert(name);
    }
  }
  EXPECT_EQ(places, (std::set<std::string>{"Operation", "action", "at", "query", "read_chunk", "select", "vsc"}));
  EXPECT_EQ(lone, (std::set<std::string>{"kEndWriteFile", "kFromCamera", "kNoData", "kSelectForWriting", "kToCamera"}));
}

}  // namespace
