#include "tests/stack/StackTest.h"

// Every command of the library, over the registry and the user client, against the storage folder of a virtual camera.

namespace tests::stack {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

// SHA-1 of "abc".
constexpr const char* kAbcKey = "a9993e364706816aba3e25717850c26c9cd0d89d";

class Commands : public StackTest {};

TEST_F(Commands, TellTheCamerasState) {
  Camera& camera = Opened();
  EXPECT_TRUE(camera.IsReady());
  EXPECT_EQ(camera.BatteryLevel(), 100.0F);
  EXPECT_EQ(camera.GetDoneCmdCount(), 2);
}

TEST_F(Commands, SetAndReadTheClock) {
  // 2031-02-03 04:05:06.000
  _VscCdbTime time{{0xEF, 7, 2, 0, 3, 0, 4, 0, 5, 0, 6, 0, 0, 0}};
  Opened().SetTime(time);
  const _VscCdbTime read = Opened().GetTime();
  EXPECT_TRUE(std::equal(read.bytes, read.bytes + 10, time.bytes)) << "the same minute";
}

TEST_F(Commands, CaptureAPicture) {
  EXPECT_TRUE(Opened().CaptureImage(true));
  EXPECT_TRUE(storage_.Has("DCIM/100KELVA/IMG_0001.JPG"));
}

TEST_F(Commands, TalkToTheMonitorAndReadTheConsole) {
  EXPECT_TRUE(Opened().MonitorCmd("version"));
  EXPECT_TRUE(Opened().MonitorCmdSingleChar("q"));
  bool more = true;
  EXPECT_THAT(Opened().ConsoleLog(more), HasSubstr("> version\n> q\n"));
  EXPECT_FALSE(more);
}

TEST_F(Commands, RebootTheCamera) {
  Opened().Reboot();
  EXPECT_FALSE(Opened().IsReady());
}

TEST_F(Commands, ReadTheInformationRecord) {
  _VscCdbCameraInformation information;
  ASSERT_TRUE(Opened().CameraInformation(information));
  EXPECT_STREQ(reinterpret_cast<const char*>(information.information), kSerial);
  EXPECT_EQ(information.last, 0);
}

TEST_F(Commands, UpgradeTheFirmware) {
  const std::string image(200'000, 'f');
  Opened().Upgrade(image.data(), static_cast<int>(image.size()), nullptr, nullptr);
  float progress = 0;
  bool running = false;
  bool failed = true;
  Opened().UpgradeStatus(progress, running, failed);
  EXPECT_GE(progress, 0.5F);
  EXPECT_TRUE(running);
  EXPECT_FALSE(failed);
}

TEST_F(Commands, SetUpWifi) {
  EXPECT_TRUE(Opened().SetWifiSSID(kVscWifiType0, "garden"));
  EXPECT_TRUE(Opened().SetWifiPassphrase(kVscWifiType1, "correct horse"));
  EXPECT_TRUE(Opened().SetWifiAuthType(kVscWifiType1, kVscWifiAuthWpa2));
  EXPECT_TRUE(Opened().DisableWifi(true));
  const std::string state = storage_.Get(".kelva/state");
  EXPECT_THAT(state, HasSubstr("wifi.0.ssid=kelva.camera.garden\n"));
  EXPECT_THAT(state, HasSubstr("wifi.1.passphrase.sha256=4104d36f"));
  EXPECT_THAT(state, HasSubstr("wifi.auth-type-commands=1\n"));
  EXPECT_THAT(state, HasSubstr("wifi.on=0\n"));
}

TEST_F(Commands, NameManualControls) {
  EXPECT_TRUE(Opened().SetManualControl(0x105, "1.5"));
  _ManualControlsState state{};
  EXPECT_TRUE(Opened().GetManualControlsState(state));
  EXPECT_EQ(state.first, 5);
  EXPECT_EQ(state.second, 1);
  EXPECT_EQ(state.fourth, 0.008);
  EXPECT_EQ(state.fifth, 2.8);
  EXPECT_EQ(state.sixth, 100);
}

TEST_F(Commands, ReadFilesOfEverySize) {
  for (const std::size_t size : {1U, 65535U, 65536U, 65537U, 131072U, 1000000U}) {
    std::string content(size, '\0');
    for (std::size_t i = 0; i < size; ++i) content[i] = static_cast<char>(i * 31 + i / 251);
    storage_.Put("DCIM/file", content);
    EXPECT_EQ(AsText(Opened().ReadFile(R"(I:\DCIM\file)", nullptr, nullptr, true)), content) << size;
  }
}

TEST_F(Commands, ReadNothingFromAnEmptyFile) {
  storage_.Put("DCIM/empty", "");
  EXPECT_THAT(Opened().ReadFile(R"(I:\DCIM\empty)", nullptr, nullptr, true), IsEmpty());
}

TEST_F(Commands, FailToReadAMissingFile) {
  EXPECT_THROW(Opened().ReadFile(R"(I:\DCIM\missing)", nullptr, nullptr, true), CameraTransferError);
}

TEST_F(Commands, WriteAndDeleteAFile) {
  const std::string content(70'000, 'w');
  Opened().WriteFile(R"(I:\new.bin)", content.data(), static_cast<int>(content.size()), nullptr, nullptr);
  EXPECT_EQ(storage_.Get("new.bin"), content);
  EXPECT_TRUE(Opened().DeleteFile(R"(I:\new.bin)"));
  EXPECT_FALSE(storage_.Has("new.bin"));
}

TEST_F(Commands, ReadTheCatalogueAndAPicture) {
  storage_.Put("DCIM/100ABCDE/IMG_0007.JPG", "abc");
  storage_.Put("DCIM/100ABCDE/IMG_0007.RAW", "raw");
  const std::vector<DcfObj> pictures = Opened().GetDcf();
  ASSERT_EQ(pictures.size(), 1U);
  EXPECT_STREQ(pictures[0].directorySuffix, "ABCDE");
  EXPECT_STREQ(pictures[0].filePrefix, "IMG_");
  EXPECT_EQ(pictures[0].directoryNumber, 100);
  EXPECT_EQ(pictures[0].fileNumber, 7);
  EXPECT_EQ(pictures[0].hasTxt, 0U);
  EXPECT_STREQ(pictures[0].block7, kAbcKey);
  EXPECT_EQ(AsText(Opened().ReadFile(pictures[0], 2, nullptr, nullptr, true)), "raw");
  EXPECT_TRUE(Opened().DeleteDcfObject(pictures[0]));
  EXPECT_THAT(Opened().GetDcf(), IsEmpty());
}

TEST_F(Commands, ListAndWalkDirectories) {
  storage_.Put("DCIM/SUB/B.JPG", "0123456789");
  storage_.Put("DCIM/TEXT.TXT", "12345");
  const std::vector<CameraDirent> entries = Opened().ReadDir(R"(I:\DCIM)");
  ASSERT_EQ(entries.size(), 4U);
  EXPECT_EQ(entries[0].name, ".");
  EXPECT_EQ(entries[2].name, "SUB");
  EXPECT_EQ(entries[2].attributes, 0x10);
  EXPECT_EQ(entries[3].size, 5);
  std::vector<std::pair<std::string, long long>> files;
  Opened().TraverseDir(R"(I:\DCIM)", files);
  EXPECT_THAT(files, ElementsAre(Pair(R"(I:\DCIM\SUB\B.JPG)", 10), Pair(R"(I:\DCIM\TEXT.TXT)", 5)));
}

TEST_F(Commands, ReadCrashLogsAndDeleteThem) {
  storage_.Put("CRASH/A.LOG", "five!");
  storage_.Put("CRASH/B.LOG", "");
  storage_.Put("CRASH/C.LOG", "xyz");
  const std::vector<_Sha1obj> logs = Opened().ReadCrashLogs(nullptr, nullptr, true, true);
  ASSERT_EQ(logs.size(), 2U);
  EXPECT_EQ(logs[0].name, R"(I:\CRASH\A.LOG)");
  EXPECT_EQ(AsText(logs[0].data), "five!");
  EXPECT_EQ(logs[1].name, R"(I:\CRASH\C.LOG)");
  EXPECT_EQ(AsText(logs[1].data), "xyz");
  EXPECT_FALSE(storage_.Has("CRASH/A.LOG"));
  EXPECT_TRUE(storage_.Has("CRASH/B.LOG"));
  EXPECT_FALSE(storage_.Has("CRASH/C.LOG"));
}

TEST_F(Commands, ReadOneShortCrashLogWithTheLongestName) {
  const std::string name(18, 'n');
  storage_.Put("CRASH/" + name, "x");
  const std::vector<_Sha1obj> logs = Opened().ReadCrashLogs(nullptr, nullptr, false, true);
  ASSERT_EQ(logs.size(), 1U);
  EXPECT_EQ(logs[0].name, R"(I:\CRASH\)" + name);
  EXPECT_EQ(AsText(logs[0].data), "x");
}

TEST_F(Commands, ReadCalibration) {
  storage_.Put("CALIB/gain", "abc");
  storage_.Put("CALIB/none", "");
  storage_.Put("CALIB/offset", "de");
  const std::vector<_Sha1obj> files = Opened().ReadCalibration(nullptr, nullptr, true);
  ASSERT_EQ(files.size(), 2U);
  EXPECT_EQ(files[0].name, "gain");
  EXPECT_EQ(AsText(files[1].data), "de");
}

TEST_F(Commands, ReadAndDeleteABatchByKey) {
  storage_.Put("DCIM/100ABCDE/IMG_0001.JPG", "abc");
  storage_.Put("DCIM/100ABCDE/IMG_0001.RAW", "raw");
  const std::string unknown(40, '0');
  const std::vector<_Sha1obj> files =
      Opened().ReadFilesBySha1({kAbcKey, unknown, kAbcKey}, {"", "", ".RAW"}, nullptr, nullptr, true);
  ASSERT_EQ(files.size(), 2U);
  EXPECT_EQ(files[0].name, kAbcKey);
  EXPECT_EQ(AsText(files[0].data), "abc");
  EXPECT_EQ(AsText(files[1].data), "raw");
  EXPECT_TRUE(Opened().DeleteBatch({kAbcKey}, true));
  EXPECT_FALSE(storage_.Has("DCIM/100ABCDE/IMG_0001.JPG"));
}

TEST_F(Commands, ReadCompressedRaw) {
  storage_.Put("DCIM/100ABCDE/IMG_0001.JPG", "abc");
  storage_.Put("DCIM/100ABCDE/IMG_0001.RAW", "12345");
  const std::vector<_Sha1obj> parts = Opened().ReadCompressedRaw(kAbcKey, nullptr, nullptr, true);
  ASSERT_EQ(parts.size(), 2U);
  EXPECT_EQ(AsText(parts[0].data), "123");
  EXPECT_EQ(AsText(parts[1].data), "45");
}

}  // namespace
}  // namespace tests::stack
