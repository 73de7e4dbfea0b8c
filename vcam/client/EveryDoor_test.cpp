#include <gmock/gmock.h>

#include <IOKit/IOReturn.h>

#include <map>

#include "vcam/bus/TestServer.h"
#include "vcam/client/BusConnection.h"
#include "vcam/client/SocketSession.h"
#include "vcam/device/TestSupport.h"
#include "vcam/door/InProcess.h"

// Every fault at every command through both doors: what a host gets is what the camera answers by itself, and it is not
// what a camera without the fault answers.

namespace vcam::client {
namespace {

using bus::Kind;

constexpr std::chrono::milliseconds kPatience = std::chrono::seconds(30);

/// A command, and what has to come before it.
struct Case {
  const char* name;
  std::vector<Bytes> before;
  Bytes cdb;
  Bytes data;
  std::uint32_t asked = 0;
};

Bytes Path(const char* path) {
  return test::Text(path);
}

std::vector<Case> Cases() {
  const Bytes identity{'A', 'B', 'C', 'D', 'E', 0, 0, 0, 'I', 'M', 'G', '_', 0, 0, 0, 0, 100, 0, 0, 0, 7, 0, 0, 0};
  const Bytes time{0xEA, 7, 2, 0, 28, 0, 23, 0, 59, 0, 59, 0, 0, 0};
  const Bytes key = Path("a9993e364706816aba3e25717850c26c9cd0d89d");
  return {{"capture", {}, {0xC0, 0, 0x00}, {}},
          {"delete file", {}, {0xC0, 0, 0x01}, Path(R"(I:\file)")},
          {"end of upgrade", {{0xC1, 0, 0}}, {0xC0, 0, 0x02}, {}},
          {"reboot", {}, {0xC0, 0, 0x03}, {}},
          {"set time", {}, {0xC0, 0, 0x04}, time},
          {"delete picture", {}, {0xC0, 0, 0x05}, identity},
          {"delete batch", {}, {0xC0, 0, 0x06}, key},
          {"network name 0", {}, {0xC0, 0, 0x07}, Path("kelva.camera.x")},
          {"network name 1", {}, {0xC0, 0, 0x08}, Path("kelva.camera.x")},
          {"passphrase 0", {}, {0xC0, 0, 0x09}, Path("correct horse")},
          {"passphrase 1", {}, {0xC0, 0, 0x0A}, Path("correct horse")},
          {"authentication type", {}, {0xC0, 0, 0x0B}, {}},
          {"manual control", {}, {0xC0, 0, 0x0C, 3}, {}},
          {"Wi-Fi off", {}, {0xC0, 0, 0x0D}, {}},
          {"monitor character", {}, {0xC0, 0, 0xFE}, Path("q")},
          {"monitor line", {}, {0xC0, 0, 0xFF}, Path("help")},
          {"start of upgrade", {}, {0xC1, 0, 3}, {}},
          {"select information", {}, {0xC2, 0, 0x00}, {}},
          {"select file", {}, {0xC2, 0, 0x01}, Path(R"(I:\file)")},
          {"open for writing", {}, {0xC2, 0, 0x01, 0x01}, Path(R"(I:\new)")},
          {"select catalogue", {}, {0xC2, 0, 0x02}, {}},
          {"select listing", {}, {0xC2, 0, 0x03}, Path(R"(I:\)")},
          {"select batch", {}, {0xC2, 0, 0x05}, key},
          {"select calibration", {}, {0xC2, 0, 0x06}, {}},
          {"select compressed raw", {}, {0xC2, 0, 0x07}, key},
          {"select crash logs", {}, {0xC2, 0, 0x08}, {}},
          {"end of write", {{0xC2, 0, 0x01, 0x01}}, {0xC3}, {}},
          {"read information", {{0xC2, 0, 0x00}}, {0xC4, 0, 0x01}, {}, 700},
          {"read catalogue", {{0xC2, 0, 0x02}}, {0xC4, 0, 0x01}, {}, 700},
          {"read calibration", {{0xC2, 0, 0x06}}, {0xC4, 0, 0x00}, {}, 2000},
          {"read crash logs", {{0xC2, 0, 0x08}}, {0xC4, 0, 0x00}, {}, 700},
          {"write chunk", {{0xC2, 0, 0x01, 0x01}}, {0xC5}, {'d', 'a', 't', 'a'}},
          {"upgrade chunk", {{0xC1, 0, 4}}, {0xC5}, {'d', 'a', 't', 'a'}},
          {"size", {{0xC2, 0, 0x00}}, {0xC6, 0, 0x00}, {}, 4},
          {"upgrade status", {}, {0xC6, 0, 0x01}, {}, 12},
          {"console log", {}, {0xC6, 0, 0x02}, {}, 700},
          {"time", {}, {0xC6, 0, 0x03}, {}, 14},
          {"ready", {}, {0xC6, 0, 0x04}, {}, 4},
          {"done count", {}, {0xC6, 0, 0x05}, {}, 4},
          {"battery", {}, {0xC6, 0, 0x06}, {}, 4},
          {"manual controls", {}, {0xC6, 0, 0x07}, {}, 40}};
}

Command CommandOf(const Bytes& cdb, const Bytes& data, std::uint32_t asked) {
  Command command;
  std::copy(cdb.begin(), cdb.end(), command.cdb.begin());
  if (!data.empty()) command.direction = Direction::kToCamera;
  if (asked != 0) command.direction = Direction::kFromCamera;
  command.length = asked != 0 ? asked : static_cast<std::uint32_t>(data.size());
  command.data = data;
  return command;
}

/// Runs what comes before; the paths of a file to write are the same for all.
template <typename Execute>
void Prepare(const Case& test, const Execute& execute) {
  static const Bytes kNew = Path(R"(I:\new)");
  for (const Bytes& cdb : test.before) {
    const bool takesPath = cdb[0] == 0xC2 && cdb[2] == 0x01;
    ASSERT_TRUE(execute(CommandOf(cdb, takesPath ? kNew : Bytes(), 0)).Good()) << test.name;
  }
}

void Fill(const test::ScratchStorage& scratch) {
  scratch.Put("file", "0123456789");
  scratch.Put("DCIM/100ABCDE/IMG_0007.JPG", "abc");
  scratch.Put("DCIM/100ABCDE/IMG_0007.RAW", "raw");
  scratch.Put("CRASH/A", "oops");
  scratch.Put("CALIB/gain", "1234");
  for (const auto& entry : std::filesystem::recursive_directory_iterator(scratch.path()))
    std::filesystem::last_write_time(entry, std::filesystem::file_time_type{});
}

/// A clock that stands still, so that two cameras answer alike.
Options StillOptions(const test::ScratchStorage& scratch) {
  Options options = scratch.CameraOptions("A");
  options.now = [] { return std::chrono::system_clock::time_point(std::chrono::seconds(1'000'000'000)); };
  return options;
}

Reply RunByItself(const Case& test, std::optional<Fault> fault) {
  const test::ScratchStorage scratch;
  Fill(scratch);
  VirtualCamera camera(StillOptions(scratch));
  Prepare(test, [&](const Command& command) { return camera.Execute(command); });
  if (fault) camera.Arm(*fault);
  return camera.Execute(CommandOf(test.cdb, test.data, test.asked));
}

/// What the camera answers by itself, with the fault or without; each is asked once.
Reply Unchanged(const Case& test, std::optional<Fault> fault) {
  static std::map<std::pair<std::string, int>, Reply> known;
  const std::pair<std::string, int> key{test.name, fault ? static_cast<int>(fault->kind) : -1};
  const auto found = known.find(key);
  return found != known.end() ? found->second : known[key] = RunByItself(test, fault);
}

/// What a host makes of the camera's own reply: a command that takes an hour is one that hangs.
Reply Expected(const Case& test, const Fault& fault) {
  const Reply reply = Unchanged(test, fault);
  return reply.delay > kPatience ? Reply{Transport::kHang} : reply;
}

/// The reply of a session of whichever door, for a camera that `arm` reaches.
template <typename Arm>
Reply Through(CommandSession& session, const Case& test, const Reply& expected, const Arm& arm) {
  EXPECT_EQ(session.Start(), kIOReturnSuccess);
  Prepare(test, [&](const Command& command) { return session.Execute(command, kPatience); });
  arm();
  // Nobody waits long for what does not come.
  const auto timeout = expected.transport == Transport::kHang ? std::chrono::milliseconds(1) : kPatience;
  return session.Execute(CommandOf(test.cdb, test.data, test.asked), timeout);
}

bool Same(const Reply& a, const Reply& b) {
  return a.transport == b.transport && a.status == b.status && a.sense == b.sense && a.moved == b.moved &&
         a.data == b.data;
}

Fault FaultOf(FaultKind kind) {
  if (kind == FaultKind::kSlow) return {kind, 3'600'000};
  return {kind, kind == FaultKind::kUnplugAtByte ? 0U : 1U};
}

class EveryDoor : public testing::TestWithParam<FaultKind> {};

TEST_P(EveryDoor, ChangesWhatTheCameraAnswers) {
  if (GetParam() == FaultKind::kUpgradeFails) return;  // shown by the status that follows, in the device's own tests
  for (const Case& test : Cases()) {
    const Reply without = Unchanged(test, std::nullopt);
    EXPECT_TRUE(without.Good()) << test.name;
    const Reply with = Unchanged(test, FaultOf(GetParam()));
    EXPECT_TRUE(!Same(with, without) || with.delay != without.delay) << test.name;
  }
}

TEST_P(EveryDoor, IsTheSameInProcess) {
  for (const Case& test : Cases()) {
    if (test.cdb[0] == 0xC6 && test.cdb[2] == 0x03) continue;  // the time goes on
    const test::ScratchStorage scratch;
    Fill(scratch);
    auto camera = std::make_shared<VirtualCamera>(StillOptions(scratch));
    const auto session = MakeInProcessSession(camera);
    const Reply expected = Expected(test, FaultOf(GetParam()));
    const Reply reply = Through(*session, test, expected, [&] { camera->Arm(FaultOf(GetParam())); });
    EXPECT_TRUE(Same(reply, expected)) << test.name;
  }
}

TEST_P(EveryDoor, IsTheSameOverTheSocket) {
  const bus::test::TestServer server;
  BusConnection control(server.path());
  std::uint32_t id = 0;
  for (const Case& test : Cases()) {
    if (test.cdb[0] == 0xC6 && test.cdb[2] == 0x03) continue;
    const test::ScratchStorage scratch;
    Fill(scratch);
    const Fault fault = FaultOf(GetParam());
    const std::string serial = "A";
    control.Request(Kind::kPlug, Encode(bus::PlugRequest{serial, scratch.path().string(), "", "", 3}));
    const auto session = MakeSocketSession(server.path(), ++id);
    const Reply expected = Expected(test, fault);
    const Reply reply = Through(*session, test, expected, [&] {
      control.Request(Kind::kFault, Encode(bus::FaultRequest{serial, std::string(NameOf(fault.kind)), fault.at}));
    });
    EXPECT_TRUE(Same(reply, expected)) << test.name;
    if (expected.transport != Transport::kGone) control.Request(Kind::kUnplug, bus::EncodeText(serial));
  }
}

INSTANTIATE_TEST_SUITE_P(AllFaults, EveryDoor, testing::ValuesIn(AllFaults().begin(), AllFaults().end()),
                         [](const auto& param) {
                           std::string name(NameOf(param.param));
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

}  // namespace
}  // namespace vcam::client
