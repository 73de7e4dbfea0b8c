// The example of the records of the kernel's driver in docs/protocol.md against UserClientRecords.h.

#include <gtest/gtest.h>

#include <cstring>

#include "src/usb/osx/UserClientTransfer.h"
#include "tests/protocol/Document.h"

namespace {

constexpr unsigned char kRequest[] = {0x02, 0x10,                                       // from the camera, 16
                                      0xC6, 0x00, 0x04, 0,    0,    0,    0,    0,      // the command block
                                      0,    0,    0,    0,    0,    0,    0,    0,      //
                                      0x04, 0,    0,    0,                              // size
                                      0x64, 0,    0,    0,                              // time-out
                                      0x55, 0x44, 0x33, 0x22, 0x11, 0x7F, 0x00, 0x00};  // the buffer's address
constexpr unsigned char kResult[] = {0, 0, 0, 0, 4, 0, 0, 0};

template <typename Record>
std::string BytesOf(const Record& record) {
  return {reinterpret_cast<const char*>(&record), sizeof(record)};
}

TEST(ProtocolRecords, ShowTheRequestOfAReadinessQuery) {
  const _VscCdb block = {{0xC6, 0x00, 0x04}};
  void* const buffer = reinterpret_cast<void*>(std::uintptr_t{0x7F1122334455});
  EXPECT_EQ(ReadDocument().records.at("request"), BytesOf(kRequest));
  EXPECT_EQ(BytesOf(kelva::MakeTransferRequest(block, 2, 4, buffer)), BytesOf(kRequest));
}

TEST(ProtocolRecords, ShowTheFieldsOfARequest) {
  wire::UserClientTransferRequest request;
  ASSERT_EQ(sizeof(request), sizeof(kRequest));
  std::memcpy(&request, kRequest, sizeof(request));
  EXPECT_EQ(request.direction, 2);
  EXPECT_EQ(request.cdbLength, 16);
  EXPECT_EQ(request.cdb[0], 0xC6);
  EXPECT_EQ(request.cdb[2], 4);
  EXPECT_EQ(std::int32_t{request.length}, 4);
  EXPECT_EQ(std::uint32_t{request.timeout}, 100u);
  EXPECT_EQ(std::uint64_t{request.bufferAddress}, 0x7F1122334455u);
}

TEST(ProtocolRecords, ShowTheResultOfFourBytes) {
  const wire::UserClientTransferResult result = {.status = 0, .actualLength = 4};
  EXPECT_EQ(ReadDocument().records.at("result"), BytesOf(kResult));
  EXPECT_EQ(BytesOf(result), BytesOf(kResult));
}

}  // namespace
