#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "UserClientTransfer.h"
#include "src/wifi/testing/Switches.h"
#include "testing/FakeCalls.h"
#include "testing/OsxCameraState.h"

// The pass-through: the request byte by byte, and the report of a failure as it is thrown.

namespace {

using Log = std::vector<std::string>;

std::string Bytes(std::initializer_list<int> values) {
  std::string bytes;
  for (const int value : values) bytes.push_back(static_cast<char>(value));
  return bytes;
}

// The address in the request.
std::string AddressOf(const void* pointer) {
  return {reinterpret_cast<const char*>(&pointer), 8};
}

const _VscCdb kBlock = {{0xC6, 0x00, 0x04, 0x7F, 0x80, 0xFF, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}};
const std::string kBlockBytes = Bytes({0xC6, 0x00, 0x04, 0x7F, 0x80, 0xFF, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15});
constexpr char kBlockText[] = "CDB=[c6 00 04 7f 80 ff 06 07 08 09 0a 0b 0c 0d 0e 0f]\n";

class Transfer : public fake::Test {
 protected:
  Transfer() : camera_(std::make_unique<OsxCamera>(framework().Hand(AddCamera("camera")))) {
    camera_->Open();
    log().clear();
  }
  ~Transfer() override {
    camera_.reset();
    EXPECT_TRUE(framework().OpenHandles().empty());
  }

  bool Send(int direction) { return camera_->Transfer(kBlock, direction, size_, buffer_, true); }

  std::string ErrorText() {
    try {
      Send(2);
    } catch (const CameraTransferError& error) {
      return error.what();
    }
    return "no error";
  }

  std::unique_ptr<OsxCamera> camera_;
  int size_ = 4;
  char storage_[8] = {};
  char* buffer_ = storage_;
};

TEST_F(Transfer, SendsThirtyFourBytesToSelectorTwo) {
  framework().answer = Bytes({0, 0, 0, 0, 3, 0, 0, 0});
  EXPECT_TRUE(Send(2));
  EXPECT_EQ(log(), Log{"Struct 2 on connection"});
  EXPECT_EQ(framework().request,
            Bytes({2, 16}) + kBlockBytes + Bytes({4, 0, 0, 0, 100, 0, 0, 0}) + AddressOf(storage_));
  EXPECT_EQ(framework().request.size(), 34u);
  EXPECT_EQ(size_, 3);
}

TEST_F(Transfer, NamesItsDirections) {
  for (const auto& [direction, byte] : std::initializer_list<std::pair<int, char>>{
           {0, 0}, {1, 1}, {2, 2}, {3, 0}, {-1, 0}, {257, 0}, {258, 0}, {-2147483647 - 1, 0}}) {
    EXPECT_TRUE(Send(direction));
    EXPECT_EQ(framework().request[0], byte) << direction;
  }
}

TEST_F(Transfer, WithoutDataHasLengthAndAddressZero) {
  size_ = 0;
  buffer_ = nullptr;
  EXPECT_TRUE(Send(0));
  EXPECT_EQ(framework().request,
            Bytes({0, 16}) + kBlockBytes + Bytes({0, 0, 0, 0, 100, 0, 0, 0}) + std::string(8, '\0'));
}

// A size and a buffer are copied as they stand, whatever the direction.
TEST_F(Transfer, CopiesTheSizeAsItStands) {
  size_ = -2;
  EXPECT_TRUE(Send(0));
  EXPECT_EQ(framework().request.substr(18, 4), Bytes({0xFE, 0xFF, 0xFF, 0xFF}));
  EXPECT_EQ(framework().request.substr(26), AddressOf(storage_));
  size_ = 0x01020304;
  EXPECT_TRUE(Send(1));
  EXPECT_EQ(framework().request.substr(18, 4), Bytes({4, 3, 2, 1}));
}

TEST_F(Transfer, WritesTheMovedLengthBackAsItStands) {
  framework().answer = Bytes({0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF});
  EXPECT_TRUE(Send(2));
  EXPECT_EQ(size_, -1);
}

TEST_F(Transfer, IgnoresItsFlag) {
  EXPECT_TRUE(camera_->Transfer(kBlock, 2, size_, buffer_, false));
  const std::string request = framework().request;
  size_ = 4;
  EXPECT_TRUE(camera_->Transfer(kBlock, 2, size_, buffer_, true));
  EXPECT_EQ(framework().request, request);
}

TEST_F(Transfer, ABadDeviceStatusIsAnErrorAndLeavesTheSize) {
  framework().answer = Bytes({1, 0, 0, 0, 2, 0, 0, 0});
  EXPECT_EQ(ErrorText(),
            std::string("Camera error: Transfer error\n") + kBlockText + "ret=0x00000000 result.status=0x00000001");
  EXPECT_EQ(size_, 4);
  EXPECT_TRUE(camera_->IsOpen());
}

TEST_F(Transfer, AFailedCallIsAnErrorWithItsCodeAsThirtyTwoBits) {
  framework().results["IOConnectCallStructMethod"] = {kIOReturnNoDevice};
  framework().answer = Bytes({0xEF, 0xBE, 0xAD, 0xDE, 2, 0, 0, 0});
  EXPECT_EQ(ErrorText(),
            std::string("Camera error: Transfer error\n") + kBlockText + "ret=0xe00002c0 result.status=0xdeadbeef");
  EXPECT_EQ(size_, 4);
}

TEST_F(Transfer, AFailedCallIsAnErrorThoughTheStatusIsGood) {
  framework().results["IOConnectCallStructMethod"] = {5};
  EXPECT_EQ(ErrorText(),
            std::string("Camera error: Transfer error\n") + kBlockText + "ret=0x00000005 result.status=0x00000000");
}

TEST_F(Transfer, ReportsAFailureAlikeInEveryLocale) {
  framework().results["IOConnectCallStructMethod"] = {kIOReturnNoDevice};
  framework().answer = Bytes({0xEF, 0xBE, 0xAD, 0xDE, 2, 0, 0, 0});
  const wifi_testing::GroupedDigits grouped;
  EXPECT_EQ(ErrorText(),
            std::string("Camera error: Transfer error\n") + kBlockText + "ret=0xe00002c0 result.status=0xdeadbeef");
}

TEST_F(Transfer, ThrowsWhateverTheSwitchSays) {
  Camera::throwExceptions_ = false;
  framework().answer = Bytes({2, 0, 0, 0, 0, 0, 0, 0});
  EXPECT_THROW(Send(2), CameraTransferError);
  Camera::throwExceptions_ = true;
}

// The example of a readiness query that the device refuses.
TEST_F(Transfer, ReportsABlockOfZerosByteByByte) {
  framework().answer = Bytes({2, 0, 0, 0, 0, 0, 0, 0});
  try {
    camera_->Transfer(_VscCdb{{0xC6, 0, 4}}, 2, size_, buffer_, true);
    FAIL();
  } catch (const CameraTransferError& error) {
    EXPECT_STREQ(error.what(),
                 "Camera error: Transfer error\nCDB=[c6 00 04 00 00 00 00 00 00 00 00 00 00 00 00 00]\n"
                 "ret=0x00000000 result.status=0x00000002");
  }
}

TEST_F(Transfer, OnAClosedCameraFailsTheCall) {
  camera_->Close();
  log().clear();
  EXPECT_THROW(Send(2), CameraTransferError);
  EXPECT_EQ(log(), Log{"Struct 2 on 0"});
}

TEST_F(Transfer, CarriesACommandOfTheSet) {
  framework().answer = Bytes({0, 0, 0, 0, 0, 0, 0, 0});
  camera_->Reboot();
  EXPECT_EQ(framework().request,
            Bytes({0, 16, 0xC0, 0x00, 0x03}) + std::string(17, '\0') + Bytes({100}) + std::string(11, '\0'));
}

}  // namespace
