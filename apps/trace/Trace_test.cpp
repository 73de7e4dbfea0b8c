#include "apps/trace/Trace.h"

#include <gtest/gtest.h>

#include <array>
#include <boost/make_shared.hpp>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "apps/commandline/Program.h"
#include "base/testing/ScratchFolder.h"
#include "src/wifi/testing/ScriptedCamera.h"

namespace apps {
namespace {

using namespace wifi_testing;

const Program kProgram = {
    .name = "kelva", .version = "1.2.3", .summary = "", .description = "", .verbs = {}, .options = {}};

class TraceTest : public testing::Test {
 protected:
  Trace Start(bool standIns = false) {
    return Trace({path_, standIns}, kProgram, "sync", [](const std::string& sentence) { ADD_FAILURE() << sentence; });
  }
  std::vector<std::string> Lines() const {
    TraceFile::FlushAllAtAbort();
    std::vector<std::string> lines;
    std::ifstream file(path_);
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
  }
  bool Says(std::size_t line, const std::string& part) const {
    return Lines().at(line).find(part) != std::string::npos;
  }

  const base::ScratchFolder folder_;
  const std::string path_ = (folder_.Path() / "trace").string();
  const boost::shared_ptr<ScriptedCamera> script_ = boost::make_shared<ScriptedCamera>();
};

TEST_F(TraceTest, BeginsWithItsVersionAndWhoWritesIt) {
  { Trace trace = Start(); }
  ASSERT_EQ(Lines().size(), 1U);
  EXPECT_TRUE(Lines()[0].starts_with(R"({"event":"trace","trace":1,"program":"kelva","version":"1.2.3","system":")"));
  EXPECT_TRUE(Says(0, R"("command":"sync","time":"2)"));
  EXPECT_TRUE(Says(0, R"("stand_ins":false)"));
}

TEST_F(TraceTest, NamesItsCamerasAndNumbersTheirExchanges) {
  Trace trace = Start();
  script_->Expect({0xC0, 0, 0});
  script_->Expect({0xC0, 0, 0});
  const auto first = trace.Around(script_, {"K\"1\x1B", "Kelva", "Camera", "1.00", "driver"});
  first->CaptureImage(true);
  first->CaptureImage(true);
  script_->Expect({0xC0, 0, 0x0D});
  trace.Around(script_, {"K2", "Kelva", "Camera", "1.00", "driver"})->DisableWifi(true);
  ASSERT_EQ(Lines().size(), 6U);
  EXPECT_TRUE(Says(
      1,
      R"("camera":1,"serial":"K\"1\u001b","vendor":"Kelva","product":"Camera","revision":"1.00","driver":"driver"})"));
  EXPECT_TRUE(Says(2, R"("camera":1,"number":1,)"));
  EXPECT_TRUE(Says(3, R"("camera":1,"number":2,)"));
  EXPECT_TRUE(Says(4, R"("camera":2,"serial":"K2")"));
  EXPECT_TRUE(Says(5, R"("camera":2,"number":1,)"));
  EXPECT_TRUE(Says(5, R"("command":"switch Wi-Fi off")"));
}

TEST_F(TraceTest, PicturesAndPassphrasesAreNotInIt) {
  Trace trace = Start();
  script_->Expect({0xC2, 0, 1}).Sends(Text("I:\\A.JPG"));
  script_->Expect({0xC6, 0, 0}).Asks(4).Answers({9, 0, 0, 0});
  script_->Expect({0xC4, 0, 1}).Asks(65536).Answers("123456789");
  script_->Expect({0xC0, 0, 9}).Sends(Text("open sesame"));
  const auto camera = trace.Around(script_, {});
  EXPECT_EQ(camera->ReadFile("I:\\A.JPG", nullptr, nullptr, true).size(), 9U);
  EXPECT_TRUE(camera->SetWifiPassphrase(_VscWifiType(0), "open sesame"));
  ASSERT_EQ(Lines().size(), 6U);
  EXPECT_TRUE(Says(2, R"("hex":"493a5c412e4a504700")"));
  EXPECT_TRUE(Says(3, R"("hex":"09000000")"));
  EXPECT_TRUE(Says(4, R"("bytes":9,"crc32":"cbf43926"})"));
  EXPECT_FALSE(Says(4, "hex"));
  EXPECT_TRUE(Says(5, R"("payload":"hidden"})"));
  EXPECT_FALSE(Says(5, "asked"));
}

// The camera may still have the file selected.
TEST_F(TraceTest, AfterASelectThatFailedNoChunkIsShown) {
  Trace trace = Start();
  const auto camera = trace.Around(script_, {});
  const auto transfer = [&](const _VscCdb& block, int direction, int size, char* buffer) {
    return camera->Transfer(block, direction, size, buffer, true);
  };
  std::array<char, 9> chunk{};
  script_->Expect({0xC2, 0, 2}).Throws("refused");
  EXPECT_THROW(transfer({{0xC2, 0, 2}}, 0, 0, nullptr), CameraTransferError);
  script_->Expect({0xC4, 0, 1}).Asks(9).Answers("123456789");
  EXPECT_TRUE(transfer({{0xC4, 0, 1}}, 2, 9, chunk.data()));
  EXPECT_TRUE(Says(3, R"("bytes":9,"crc32":"cbf43926"})"));
  EXPECT_FALSE(Says(3, "hex"));
  script_->Expect({0xC2, 0, 2});
  EXPECT_TRUE(transfer({{0xC2, 0, 2}}, 0, 0, nullptr));
  script_->Expect({0xC4, 0, 1}).Asks(9).Answers("123456789");
  EXPECT_TRUE(transfer({{0xC4, 0, 1}}, 2, 9, chunk.data()));
  EXPECT_TRUE(Says(5, R"("hex":"313233343536373839"})"));
}

TEST_F(TraceTest, StandInsTakeThePlaceOfNames) {
  Trace trace = Start(true);
  script_->Expect({0xC2, 0, 1}).Sends(Text("I:\\K7.JPG"));
  script_->Expect({0xC6, 0, 0}).Asks(4).Answers({0, 0, 0, 0});
  script_->Expect({0xC0, 0, 7}).Sends(Text("kelva.camera.Bo"));
  const auto camera = trace.Around(script_, {"K7", "", "", "", ""});
  camera->ReadFile("I:\\K7.JPG", nullptr, nullptr, true);
  camera->SetWifiSSID(_VscWifiType(0), "Bo");
  EXPECT_TRUE(Says(0, R"("stand_ins":true)"));
  EXPECT_TRUE(Says(1, R"("serial":null)"));
  EXPECT_TRUE(Says(2, R"("hex":"493a5c2a2a2e4a504700")"));
  EXPECT_TRUE(Says(4, R"("hex":"61616161612e6161616161612e416100")"));
}

TEST_F(TraceTest, ACommandThatNeverEndsIsNamedWhenTheProgramEnds) {
  Trace trace = Start();
  script_->Expect({0xC0, 0, 3}).Then([&] { Trace::CutOff(); });
  const auto camera = trace.Around(script_, {});
  camera->Reboot();
  Trace::CutOff();  // nothing is open now
  ASSERT_EQ(Lines().size(), 4U);
  EXPECT_TRUE(Lines()[2].starts_with(R"({"event":"unfinished","process":)"));
  EXPECT_TRUE(Says(2, R"("command":"reboot")"));
  EXPECT_TRUE(Says(3, R"("event":"exchange")"));
}

TEST_F(TraceTest, ASecondRunAddsATraceOfItsOwn) {
  { Trace trace = Start(); }
  { Trace trace = Start(); }
  ASSERT_EQ(Lines().size(), 2U);
  EXPECT_TRUE(Lines()[1].starts_with(R"({"event":"trace","trace":1,)"));
}

}  // namespace
}  // namespace apps
