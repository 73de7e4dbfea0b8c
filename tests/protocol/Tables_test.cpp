// The tables of docs/protocol.md against the register and the records of the code.

#include <gtest/gtest.h>

#include <set>

#include "Camera.h"
#include "DcfLayout.h"
#include "Document.h"
#include "UserClientRecords.h"
#include "VscRegister.h"

namespace {

constexpr int kNoSubCode = -1;

using Code = std::pair<int, int>;

Code Of(vsc::Operation operation, int subCode) {
  return {static_cast<int>(operation), subCode};
}

/// Every operation code and sub-code of the code.
std::set<Code> CodeRegister() {
  using vsc::Operation;
  return {
      Of(Operation::kAction, vsc::action::kCaptureImage),
      Of(Operation::kAction, vsc::action::kDeleteFile),
      Of(Operation::kAction, vsc::action::kEndUpgrade),
      Of(Operation::kAction, vsc::action::kReboot),
      Of(Operation::kAction, vsc::action::kSetTime),
      Of(Operation::kAction, vsc::action::kDeletePicture),
      Of(Operation::kAction, vsc::action::kDeleteBatch),
      Of(Operation::kAction, vsc::action::kWifiNameType0),
      Of(Operation::kAction, vsc::action::kWifiNameType1),
      Of(Operation::kAction, vsc::action::kWifiPassphraseType0),
      Of(Operation::kAction, vsc::action::kWifiPassphraseType1),
      Of(Operation::kAction, vsc::action::kWifiAuthType),
      Of(Operation::kAction, vsc::action::kManualControl),
      Of(Operation::kAction, vsc::action::kDisableWifi),
      Of(Operation::kAction, vsc::action::kMonitorSingleChar),
      Of(Operation::kAction, vsc::action::kMonitorLine),
      Of(Operation::kBeginUpgrade, kNoSubCode),
      Of(Operation::kSelect, vsc::select::kInformation),
      Of(Operation::kSelect, vsc::select::kFile),
      Of(Operation::kSelect, vsc::select::kCatalogue),
      Of(Operation::kSelect, vsc::select::kDirectory),
      Of(Operation::kSelect, vsc::select::kBatch),
      Of(Operation::kSelect, vsc::select::kCalibration),
      Of(Operation::kSelect, vsc::select::kCompressedRaw),
      Of(Operation::kSelect, vsc::select::kCrashLogs),
      Of(Operation::kEndWrite, vsc::kEndWriteFile),
      Of(Operation::kReadChunk, vsc::read_chunk::kBundle),
      Of(Operation::kReadChunk, vsc::read_chunk::kSelected),
      Of(Operation::kWriteChunk, kNoSubCode),
      Of(Operation::kQuery, vsc::query::kSelectedSize),
      Of(Operation::kQuery, vsc::query::kUpgradeStatus),
      Of(Operation::kQuery, vsc::query::kConsoleLog),
      Of(Operation::kQuery, vsc::query::kTime),
      Of(Operation::kQuery, vsc::query::kReady),
      Of(Operation::kQuery, vsc::query::kDoneCommands),
      Of(Operation::kQuery, vsc::query::kBattery),
      Of(Operation::kQuery, vsc::query::kManualControls),
  };
}

TEST(ProtocolTables, NameEveryOperationAndSubCodeOfTheCode) {
  std::set<Code> documented;
  const Document document = ReadDocument();
  for (const Row& row : document.tables.at("code")) {
    const int subCode = row[1] == "-" ? kNoSubCode : std::stoi(row[1], nullptr, 16);
    EXPECT_TRUE(documented.insert({std::stoi(row[0], nullptr, 16), subCode}).second) << row[0] << " " << row[1];
  }
  EXPECT_EQ(documented, CodeRegister());
}

TEST(ProtocolTables, GiveTheSizesOfTheRecords) {
  std::map<std::string, int> documented;
  const Document document = ReadDocument();
  for (const Row& row : document.tables.at("record")) {
    documented[row[0]] = std::stoi(row[1]);
  }
  const std::map<std::string, int> expected = {{"_VscCdb", sizeof(_VscCdb)},
                                               {"_VscCdbTime", sizeof(_VscCdbTime)},
                                               {"_VscCdbCameraInformation", sizeof(_VscCdbCameraInformation)},
                                               {"_VscCdbDcfHeader", sizeof(_VscCdbDcfHeader)},
                                               {"DcfObj", sizeof(DcfObj)},
                                               {"UserClientTransferRequest", sizeof(UserClientTransferRequest)},
                                               {"UserClientTransferResult", sizeof(UserClientTransferResult)}};
  EXPECT_EQ(documented, expected);
}

TEST(ProtocolTables, GiveTheSizesOfTheCatalogueFields) {
  const std::vector<Row> rows = ReadDocument().tables.at("field type");
  EXPECT_EQ(rows.size(), 10u);
  for (const Row& row : rows) {
    EXPECT_EQ(vsc::DcfFieldSize(static_cast<std::uint32_t>(std::stoul(row[0]))), std::stoul(row[1])) << row[0];
  }
  EXPECT_EQ(vsc::DcfFieldSize(10), 0u);
}

}  // namespace
