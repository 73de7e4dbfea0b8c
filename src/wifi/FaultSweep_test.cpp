#include "testing/FaultSweep.h"

#include <gtest/gtest.h>

#include <string>

// Every fault at every transfer of the commands that query or change the camera's state.

namespace {

using namespace wifi_testing;

class ControlSweep : public testing::TestWithParam<Sweep> {};

TEST_P(ControlSweep, EveryFaultHasItsOutcome) {
  RunSweep(GetParam());
}

std::string NameOf(const testing::TestParamInfo<Sweep>& info) {
  return info.param.name;
}

_VscCdbTime SomeTime() {
  return {{'A', 'B', 'C', 'D', 'E', 'F', 'G', 'H', 'I', 'J', 'K', 'L', 'M', 'N'}};
}

INSTANTIATE_TEST_SUITE_P(
    Status, ControlSweep,
    testing::Values(
        Sweep{"IsReady",
              64,
              {Step({0xC6, 0, 4}).Asks(4).Answers({1, 0, 0, 0})},
              [](Camera& camera) { return Show(camera.IsReady()); },
              "1 true",
              {{"1 cut", "1 false", "1 IsReady() response size incorrect. / false",
                "1 IsReady() response size incorrect. / false"}}},
        Sweep{"MonitorCmd",
              64,
              {Step({0xC0, 0, 0xFF}).Sends(Text("x"))},
              [](Camera& camera) { return Show(camera.MonitorCmd("x")); },
              "1 true",
              {{"1 false", "1 false", "1 true", "1 true"}}},
        Sweep{"MonitorCmdSingleChar",
              64,
              {Step({0xC0, 0, 0xFE}).Sends(Text("x"))},
              [](Camera& camera) { return Show(camera.MonitorCmdSingleChar("x")); },
              "1 true",
              {{"1 false", "1 false", "1 true", "1 true"}}},
        Sweep{"MonitorKnockCmd", 64, {}, [](Camera& camera) { return Show(camera.MonitorKnockCmd()); }, "0 false", {}},
        Sweep{"GetTime",
              64,
              {Step({0xC6, 0, 3}).Asks(14).Answers("ABCDEFGHIJKLMN")},
              [](Camera& camera) {
                const _VscCdbTime time = camera.GetTime();
                return ShowBytes(time.bytes, 14);
              },
              "1 ABCDEFGHIJKLMN",
              {{"1 cut", "1 Camera error. / ..............", "1 Camera error. / ..CD..........",
                "1 Camera error. / ..CD.........."}}},
        Sweep{"SetTime",
              64,
              {Step({0xC0, 0, 4}).Sends("ABCDEFGHIJKLMN")},
              [](Camera& camera) {
                camera.SetTime(SomeTime());
                return "done";
              },
              "1 done",
              {{"1 cut", "1 done", "1 done", "1 done"}}},
        Sweep{"GetDoneCmdCount",
              64,
              {Step({0xC6, 0, 5}).Asks(4).Answers({7, 0, 0, 0})},
              [](Camera& camera) { return std::to_string(camera.GetDoneCmdCount()); },
              "1 7",
              {{"1 cut", "1 GetDoneCmdCount() response size incorrect / 0",
                "1 GetDoneCmdCount() response size incorrect / 0", "1 GetDoneCmdCount() response size incorrect / 0"}}},
        Sweep{"BatteryLevel",
              64,
              {Step({0xC6, 0, 6}).Asks(4).Answers({0, 0, 0, 0x3F})},
              [](Camera& camera) { return std::to_string(camera.BatteryLevel()); },
              "1 0.500000",
              {{"1 cut", "1 BatteryLevel() response size incorrect / 0.000000",
                "1 BatteryLevel() response size incorrect / 0.000000",
                "1 BatteryLevel() response size incorrect / 0.000000"}}},
        Sweep{"Reboot",
              64,
              {Step({0xC0, 0, 3})},
              [](Camera& camera) {
                camera.Reboot();
                return "done";
              },
              "1 done",
              {{"1 cut", "1 done", "1 done", "1 done"}}},
        Sweep{"CaptureImage",
              64,
              {Step({0xC0, 0, 0})},
              [](Camera& camera) { return Show(camera.CaptureImage(true)); },
              "1 true",
              {{"1 cut", "1 false", "1 true", "1 true"}}},
        Sweep{"DisableWifi",
              64,
              {Step({0xC0, 0, 0x0D})},
              [](Camera& camera) { return Show(camera.DisableWifi(true)); },
              "1 true",
              {{"1 cut", "1 false", "1 true", "1 true"}}}),
    NameOf);

std::string RunInformation(Camera& camera) {
  _VscCdbCameraInformation info;
  if (!camera.CameraInformation(info)) return "false";
  return "true " + ShowBytes(&info, 1) + ShowBytes(reinterpret_cast<const char*>(&info) + 643, 1);
}

std::string RunConsoleLog(Camera& camera) {
  bool more = false;
  const std::string text = camera.ConsoleLog(more);
  return text + (more ? " more" : " end");
}

std::string RunUpgradeStatus(Camera& camera) {
  float progress = 9.0f;
  bool first = false;
  bool second = true;
  camera.UpgradeStatus(progress, first, second);
  return std::to_string(progress) + " " + Show(first) + " " + Show(second);
}

INSTANTIATE_TEST_SUITE_P(
    Information, ControlSweep,
    testing::Values(Sweep{"CameraInformation",
                          64,
                          {Step({0xC2, 0, 0}), Step({0xC6, 0, 0}).Asks(4).Answers({0x84, 2, 0, 0}),
                           Step({0xC4, 0, 1}).Asks(644).Answers(std::string(644, 'i'))},
                          RunInformation,
                          "3 true ii",
                          {{"1 cut", "1 false", "3 true ii", "3 true ii"},
                           {"2 cut", "2 false", "3 true ii", "3 true ii"},
                           {"3 cut", "3 false", "3 true i.", "3 true ii"}}},
                    Sweep{"ConsoleLog",
                          64,
                          {Step({0xC6, 0, 2}).Asks(64).Answers({1, 0, 0, 0, 0, 0, 0, 0, 'l', 'o', 'g'})},
                          RunConsoleLog,
                          "1 log end",
                          {{"1 cut", "1 ConsoleLog() version incorrect. /  more", "1 lo end", "1 logX end"}}},
                    Sweep{"Upgrade",
                          8,
                          {Step({0xC1, 0, 10}), Step({0xC5, 0, 0}).Sends("abcdefgh"), Step({0xC5, 0, 8}).Sends("ij"),
                           Step({0xC0, 0, 2})},
                          [](Camera& camera) {
                            camera.Upgrade("abcdefghij", 10, nullptr, nullptr);
                            return "done";
                          },
                          "4 done",
                          {{"1 cut", "4 done", "4 done", "4 done"},
                           {"2 cut", "4 done", "4 done", "4 done"},
                           {"3 cut", "4 done", "4 done", "4 done"},
                           {"4 cut", "4 done", "4 done", "4 done"}}},
                    Sweep{"UpgradeStatus",
                          64,
                          {Step({0xC6, 0, 1}).Asks(12).Answers({0, 0, 0, 0x3F, 1, 0, 0, 0, 0, 0, 0, 1})},
                          RunUpgradeStatus,
                          "1 0.500000 true true",
                          {{"1 cut", "1 0.000000 false false",
                            "1 UpgradeStatus() response size incorrect. / 0.500000 true false",
                            "1 UpgradeStatus() response size incorrect. / 0.500000 true true"}}}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Settings, ControlSweep,
    testing::Values(Sweep{"SetWifiSSID",
                          64,
                          {Step({0xC0, 0, 7}).Sends(Text("kelva.camera.x"))},
                          [](Camera& camera) { return Show(camera.SetWifiSSID(kVscWifiType0, "x")); },
                          "1 true",
                          {{"1 cut", "1 false", "1 true", "1 true"}}},
                    Sweep{"SetWifiPassphrase",
                          64,
                          {Step({0xC0, 0, 0x0A}).Sends(Text("123456789"))},
                          [](Camera& camera) { return Show(camera.SetWifiPassphrase(kVscWifiType1, "123456789")); },
                          "1 true",
                          {{"1 cut", "1 false", "1 true", "1 true"}}},
                    Sweep{"SetWifiAuthType",
                          64,
                          {Step({0xC0, 0, 0x0B}).Holds(Text("WPA2"))},
                          [](Camera& camera) { return Show(camera.SetWifiAuthType(kVscWifiType1, kVscWifiAuthWpa2)); },
                          "1 true",
                          {{"1 cut", "1 false", "1 true", "1 true"}}},
                    Sweep{"SetManualControl",
                          64,
                          {Step({0xC0, 0, 0x0C, 3}).Holds(Text("v"))},
                          [](Camera& camera) { return Show(camera.SetManualControl(3, "v")); },
                          "1 true",
                          {{"1 cut", "1 false", "1 true", "1 true"}}},
                    Sweep{"GetManualControlsState",
                          64,
                          {Step({0xC6, 0, 7}).Asks(40).Answers(std::string(32, '\0'))},
                          [](Camera& camera) {
                            _ManualControlsState state;
                            return Show(camera.GetManualControlsState(state));
                          },
                          "1 true",
                          {{"1 cut", "1 false", "1 GetManualControlsState() unexpected response length / false",
                            "1 true"}}}),
    NameOf);

}  // namespace
