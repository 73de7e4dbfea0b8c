// Each example of docs/protocol.md, played through the library: the same commands, and the result that the text tells.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>

#include "tests/protocol/Player.h"

namespace {

constexpr _VscCdbTime kClock = {{0xea, 0x07, 3, 0, 14, 0, 15, 0, 9, 0, 26, 0, 0x17, 0x02}};

std::string Text(const std::vector<char>& bytes) {
  return {bytes.begin(), bytes.end()};
}

void ExpectOneFile(const std::vector<_Sha1obj>& files, const std::string& name, const std::string& data) {
  ASSERT_EQ(files.size(), 1u);
  EXPECT_EQ(files[0].name, name);
  EXPECT_EQ(Text(files[0].data), data);
}

void PlayInformation(Camera& camera) {
  _VscCdbCameraInformation info{};
  EXPECT_TRUE(camera.CameraInformation(info));
  EXPECT_STREQ(reinterpret_cast<const char*>(info.information), "K1");
}

void PlayConsole(Camera& camera) {
  bool more = true;
  EXPECT_EQ(camera.ConsoleLog(more), "boot\n");
  EXPECT_FALSE(more);
}

void PlayUpgradeStatus(Camera& camera) {
  float progress = 0;
  bool first = false;
  bool second = true;
  camera.UpgradeStatus(progress, first, second);
  EXPECT_EQ(progress, 0.5F);
  EXPECT_TRUE(first);
  EXPECT_FALSE(second);
}

void PlayManualControls(Camera& camera) {
  _ManualControlsState state{};
  EXPECT_TRUE(camera.GetManualControlsState(state));
  EXPECT_EQ(state.first, 1);
  EXPECT_EQ(state.second, 2);
  EXPECT_EQ(state.third, 0.5F);
  EXPECT_EQ(state.fourth, 1.5);
  EXPECT_EQ(state.fifth, 2.5);
  EXPECT_EQ(state.sixth, 3);
}

void PlayCatalogue(Camera& camera) {
  const std::vector<DcfObj> pictures = camera.GetDcf();
  ASSERT_EQ(pictures.size(), 1u);
  EXPECT_EQ(pictures[0].directoryNumber, 100);
  EXPECT_STREQ(pictures[0].directorySuffix, "ABCDE");
  EXPECT_EQ(pictures[0].hasJpg, 1u);
  EXPECT_EQ(Camera::DcfFilename(pictures[0], 1), "IMG_0012.JPG");
}

void PlayListing(Camera& camera) {
  const std::vector<CameraDirent> entries = camera.ReadDir("I:\\DCIM");
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].name, "A.TXT");
  EXPECT_EQ(entries[0].size, 5);
  EXPECT_EQ(entries[0].attributes, 0x20);
}

void PlayCompressedRaw(Camera& camera) {
  const std::vector<_Sha1obj> parts = camera.ReadCompressedRaw("k1", nullptr, nullptr, true);
  ASSERT_EQ(parts.size(), 2u);
  EXPECT_EQ(Text(parts[0].data), "ab");
  EXPECT_EQ(Text(parts[1].data), "c");
}

DcfObj ExamplePicture() {
  DcfObj picture{};
  std::string("ABCDE").copy(picture.directorySuffix, 5);
  std::string("IMG_").copy(picture.filePrefix, 4);
  picture.directoryNumber = 100;
  picture.fileNumber = 12;
  return picture;
}

/// What plays each example.
const std::map<std::string, std::function<void(Camera&)>> kPlays = {
    {"IsReady", [](Camera& camera) { EXPECT_TRUE(camera.IsReady()); }},
    {"MonitorCmd", [](Camera& camera) { EXPECT_TRUE(camera.MonitorCmd("help")); }},
    {"MonitorCmdSingleChar", [](Camera& camera) { EXPECT_TRUE(camera.MonitorCmdSingleChar("q")); }},
    {"Reboot", [](Camera& camera) { camera.Reboot(); }},
    {"CaptureImage", [](Camera& camera) { EXPECT_TRUE(camera.CaptureImage(true)); }},
    {"DisableWifi", [](Camera& camera) { EXPECT_TRUE(camera.DisableWifi(true)); }},
    {"GetTime",
     [](Camera& camera) {
       const _VscCdbTime time = camera.GetTime();
       EXPECT_TRUE(std::equal(std::begin(time.bytes), std::end(time.bytes), std::begin(kClock.bytes)));
     }},
    {"SetTime", [](Camera& camera) { camera.SetTime(kClock); }},
    {"GetDoneCmdCount", [](Camera& camera) { EXPECT_EQ(camera.GetDoneCmdCount(), 258); }},
    {"BatteryLevel", [](Camera& camera) { EXPECT_EQ(camera.BatteryLevel(), 0.75F); }},
    {"CameraInformation", PlayInformation},
    {"ConsoleLog", PlayConsole},
    {"Upgrade", [](Camera& camera) { camera.Upgrade("image", 5, nullptr, nullptr); }},
    {"UpgradeStatus", PlayUpgradeStatus},
    {"SetWifiSSID, type 0", [](Camera& camera) { EXPECT_TRUE(camera.SetWifiSSID(kVscWifiType0, "porch")); }},
    {"SetWifiSSID, type 1", [](Camera& camera) { EXPECT_TRUE(camera.SetWifiSSID(kVscWifiType1, "attic")); }},
    {"SetWifiPassphrase, type 0",
     [](Camera& camera) { EXPECT_TRUE(camera.SetWifiPassphrase(kVscWifiType0, "ninechars")); }},
    {"SetWifiPassphrase, type 1",
     [](Camera& camera) { EXPECT_TRUE(camera.SetWifiPassphrase(kVscWifiType1, "ten letter")); }},
    {"SetWifiAuthType", [](Camera& camera) { EXPECT_TRUE(camera.SetWifiAuthType(kVscWifiType1, kVscWifiAuthWep)); }},
    {"SetManualControl", [](Camera& camera) { EXPECT_TRUE(camera.SetManualControl(7, "1/60")); }},
    {"GetManualControlsState", PlayManualControls},
    {"ReadFile", [](Camera& camera) { EXPECT_EQ(Text(camera.ReadFile("I:\\A.TXT", nullptr, nullptr, true)), "abc"); }},
    {"WriteFile", [](Camera& camera) { camera.WriteFile("I:\\A.TXT", "abc", 3, nullptr, nullptr); }},
    {"DeleteFile", [](Camera& camera) { EXPECT_TRUE(camera.DeleteFile("I:\\A.TXT")); }},
    {"GetDcf", PlayCatalogue},
    {"DeleteDcfObject", [](Camera& camera) { EXPECT_TRUE(camera.DeleteDcfObject(ExamplePicture())); }},
    {"ReadDir", PlayListing},
    {"ReadCrashLogs",
     [](Camera& camera) { ExpectOneFile(camera.ReadCrashLogs(nullptr, nullptr, false, true), "a.log", "crash"); }},
    {"ReadCalibration",
     [](Camera& camera) {
       ExpectOneFile(camera.ReadCalibration(nullptr, nullptr, true), "gain", std::string(1, '\0'));
     }},
    {"ReadFilesBySha1",
     [](Camera& camera) {
       ExpectOneFile(camera.ReadFilesBySha1({"k1", "k2"}, {"a", "b"}, nullptr, nullptr, true), "k2", "abc");
     }},
    {"DeleteBatch",
     [](Camera& camera) {
       EXPECT_TRUE(camera.DeleteBatch({"ab", "cd"}, true));
     }},
    {"ReadCompressedRaw", PlayCompressedRaw},
};

/// Whether a step of the example has the code of this row of the register.
bool Sends(const std::vector<Step>& example, const Row& row) {
  return std::any_of(example.begin(), example.end(), [&](const Step& step) {
    return static_cast<unsigned char>(step.cdb[0]) == std::stoi(row[0], nullptr, 16) &&
           (row[1] == "-" || static_cast<unsigned char>(step.cdb[2]) == std::stoi(row[1], nullptr, 16));
  });
}

/// The example of an operation of the register, "Upgrade" for "Upgrade, end"; nothing for what is no operation.
const std::vector<Step>* ExampleOf(const Document& document, const std::string& operation) {
  for (const std::string& name : {operation, operation.substr(0, operation.find(','))}) {
    const auto example = document.examples.find(name);
    if (example != document.examples.end()) return &example->second;
  }
  return nullptr;
}

TEST(ProtocolExamples, AreTheBytesOfTheLibrary) {
  const Document document = ReadDocument();
  for (const auto& [name, steps] : document.examples) {
    SCOPED_TRACE(name);
    const auto play = kPlays.find(name);
    ASSERT_NE(play, kPlays.end()) << "no operation of this name is played";
    Player player(steps);
    play->second(player);
  }
}

TEST(ProtocolExamples, StandForEveryOperation) {
  const Document document = ReadDocument();
  for (const auto& [name, play] : kPlays) {
    EXPECT_TRUE(document.examples.contains(name)) << name << " has no example";
  }
}

TEST(ProtocolExamples, SendEveryCodeOfTheRegister) {
  const Document document = ReadDocument();
  for (const Row& row : document.tables.at("code")) {
    SCOPED_TRACE(row[0] + " " + row[1] + " " + row[2]);
    if (const std::vector<Step>* example = ExampleOf(document, row[2])) {
      EXPECT_TRUE(Sends(*example, row)) << "not sent by its own example";
    } else {
      EXPECT_TRUE(std::any_of(document.examples.begin(), document.examples.end(),
                              [&](const auto& named) { return Sends(named.second, row); }));
    }
  }
}

}  // namespace
