#include "TransferReport.h"

#include <gtest/gtest.h>

#include "CameraError.h"

namespace kelva {
namespace {

constexpr std::int32_t kNoDevice = -0x1FFFFD40;  // 0xe00002c0
const _VscCdb kReportedBlock = {{0xC6, 0x00, 0x04, 0x7F, 0x80, 0xFF, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}};

TEST(TransferReport, IsReadBackAsItWasWritten) {
  for (const TransferReport& written : std::initializer_list<TransferReport>{{kReportedBlock, kNoDevice, 0xDEADBEEF},
                                                                             {{}, 0, 2},
                                                                             {kReportedBlock, -1, 0xFFFFFFFF},
                                                                             {kReportedBlock, 5, 0}}) {
    const CameraTransferError error(WriteTransferReport(written));
    const std::optional<TransferReport> read = ReadTransferReport(error.what());
    ASSERT_TRUE(read);
    EXPECT_EQ(BlockText(read->cdb), BlockText(written.cdb));
    EXPECT_EQ(read->returnCode, written.returnCode);
    EXPECT_EQ(read->status, written.status);
  }
}

TEST(TransferReport, IsReadFromTheMessageOfAFailure) {
  const std::optional<TransferReport> read = ReadTransferReport(
      "Camera error: Transfer error\nCDB=[c6 00 04 00 00 00 00 00 00 00 00 00 00 00 00 0f]\n"
      "ret=0xe00002c0 result.status=0x00000002");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->cdb.bytes[0], 0xC6);
  EXPECT_EQ(read->cdb.bytes[15], 0x0F);
  EXPECT_EQ(read->returnCode, kNoDevice);
  EXPECT_EQ(read->status, 2U);
}

TEST(TransferReport, OtherMessagesHaveNone) {
  const std::string whole = WriteTransferReport({kReportedBlock, kNoDevice, 2});
  // Every digit of the status counts: the shortest report that is whole ends with one of them.
  for (std::size_t length = 0; length < whole.size() - 7; ++length) {
    EXPECT_FALSE(ReadTransferReport(whole.substr(0, length))) << length;
  }
  for (const char* other : {"Camera error: ReadFile() truncated.", "Camera error.", "\nret=0xzz result.status=0x0",
                            "Transfer error\nCDB=[100 00]\nret=0x00000000 result.status=0x00000002"}) {
    EXPECT_FALSE(ReadTransferReport(other)) << other;
  }
}

}  // namespace
}  // namespace kelva
