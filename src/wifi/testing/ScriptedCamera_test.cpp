#include "testing/ScriptedCamera.h"

#include <gtest/gtest-spi.h>

// The tests stand on this camera, so it is shown here that it fails when it should.

namespace wifi_testing {
namespace {

bool Send(Camera& camera, int code, int direction, int size, char* buffer, bool flag) {
  _VscCdb cdb{};
  cdb.bytes[0] = static_cast<unsigned char>(code);
  return camera.Transfer(cdb, direction, size, buffer, flag);
}

TEST(ScriptedCamera, AnswersAsTheScriptSays) {
  ScriptedCamera camera;
  camera.Expect({0xC6}).Asks(4).Answers({1, 2, 3});
  char buffer[4] = {};
  int size = 4;
  EXPECT_TRUE(camera.Transfer(_VscCdb{{0xC6}}, 2, size, buffer, true));
  EXPECT_EQ(size, 3);
  EXPECT_EQ(std::string(buffer, 4), Bytes({1, 2, 3, 0}));
  EXPECT_EQ(camera.calls, Calls{"Transfer true"});
}

TEST(ScriptedCamera, AFailureLeavesSizeAndBufferUntouched) {
  ScriptedCamera camera;
  camera.Expect({0xC6}).Asks(4).Answers({1, 2, 3, 4}).Fails();
  char buffer[4] = {};
  int size = 4;
  EXPECT_FALSE(camera.Transfer(_VscCdb{{0xC6}}, 2, size, buffer, true));
  EXPECT_EQ(size, 4);
  EXPECT_EQ(buffer[0], 0);
}

TEST(ScriptedCamera, AMissingCommandFailsTheTest) {
  EXPECT_NONFATAL_FAILURE(
      {
        ScriptedCamera camera;
        camera.Expect({0xC0});
      },
      "expected commands were not sent");
}

TEST(ScriptedCamera, ASurplusCommandFailsTheTest) {
  ScriptedCamera camera;
  EXPECT_NONFATAL_FAILURE(EXPECT_FALSE(Send(camera, 0xC0, 0, 0, nullptr, true)), "not in the script");
}

TEST(ScriptedCamera, ADifferentBlockFailsTheTest) {
  ScriptedCamera camera;
  camera.Expect({0xC0});
  EXPECT_NONFATAL_FAILURE(Send(camera, 0xC1, 0, 0, nullptr, true), "c1 00");
}

TEST(ScriptedCamera, ADifferentFlagFailsTheTest) {
  ScriptedCamera camera;
  camera.Expect({0xC0});
  EXPECT_NONFATAL_FAILURE(Send(camera, 0xC0, 0, 0, nullptr, false), "flag");
}

TEST(ScriptedCamera, ADifferentDirectionFailsTheTest) {
  ScriptedCamera camera;
  camera.Expect({0xC0});
  EXPECT_NONFATAL_FAILURE(Send(camera, 0xC0, 2, 0, nullptr, true), "direction");
}

TEST(ScriptedCamera, OtherBytesFailTheTest) {
  ScriptedCamera camera;
  camera.Expect({0xC0}).Sends("ab");
  char text[] = "ac";
  EXPECT_NONFATAL_FAILURE(Send(camera, 0xC0, 1, 2, text, true), "sent");
}

TEST(ScriptedCamera, AMissingBufferFailsTheTest) {
  ScriptedCamera camera;
  camera.Expect({0xC0}).Asks(4);
  EXPECT_NONFATAL_FAILURE(Send(camera, 0xC0, 2, 4, nullptr, true), "buffer");
}

}  // namespace
}  // namespace wifi_testing
