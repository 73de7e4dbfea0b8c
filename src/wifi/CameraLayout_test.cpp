#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "testing/PlainCamera.h"

// The order of the virtual operations and the place of the members are part of the interface: programs that were built
// against one version of the library call through the table.

namespace {

using wifi_testing::PlainCamera;
using ProgressFunction = void (*)(void*, float);

// A pointer to a virtual member starts with the byte offset in the table, which the C++ ABI of some processors makes odd.
template <typename Member>
std::size_t Slot(Member member) {
  std::size_t word = 0;
  std::memcpy(&word, &member, sizeof word);
  return word / sizeof(void*);
}

TEST(CameraTable, DeviceOperationsComeFirst) {
  EXPECT_EQ(Slot(&Camera::Name), 2u);
  EXPECT_EQ(Slot(&Camera::MountPath), 3u);
  EXPECT_EQ(Slot(&Camera::Open), 4u);
  EXPECT_EQ(Slot(&Camera::Close), 5u);
  EXPECT_EQ(Slot(&Camera::ListenForCameraLost), 6u);
  EXPECT_EQ(Slot(&Camera::IsReady), 7u);
  EXPECT_EQ(Slot(&Camera::WasDisconnected), 8u);
  EXPECT_EQ(Slot(&Camera::MonitorCmd), 9u);
  EXPECT_EQ(Slot(&Camera::MonitorCmdSingleChar), 10u);
}

TEST(CameraTable, StorageOperationsFollow) {
  using ByPath = std::vector<char> (Camera::*)(const char*, ProgressFunction, void*, bool);
  using ByPicture = std::vector<char> (Camera::*)(const DcfObj&, int, ProgressFunction, void*, bool);
  EXPECT_EQ(Slot(&Camera::GetDcf), 11u);
  EXPECT_EQ(Slot(&Camera::ReadFilesBySha1), 12u);
  EXPECT_EQ(Slot(&Camera::DeleteBatch), 13u);
  EXPECT_EQ(Slot(&Camera::ReadCalibration), 14u);
  EXPECT_EQ(Slot(&Camera::ReadCrashLogs), 15u);
  EXPECT_EQ(Slot(static_cast<ByPath>(&Camera::ReadFile)), 16u);
  EXPECT_EQ(Slot(static_cast<ByPicture>(&Camera::ReadFile)), 17u);
  EXPECT_EQ(Slot(&Camera::ReadCompressedRaw), 18u);
  EXPECT_EQ(Slot(&Camera::WriteFile), 19u);
}

TEST(CameraTable, ControlOperationsFollow) {
  EXPECT_EQ(Slot(&Camera::Upgrade), 20u);
  EXPECT_EQ(Slot(&Camera::UpgradeStatus), 21u);
  EXPECT_EQ(Slot(&Camera::CameraInformation), 22u);
  EXPECT_EQ(Slot(&Camera::ConsoleLog), 23u);
  EXPECT_EQ(Slot(&Camera::Reboot), 24u);
  EXPECT_EQ(Slot(&Camera::GetTime), 25u);
  EXPECT_EQ(Slot(&Camera::SetTime), 26u);
  EXPECT_EQ(Slot(&Camera::ReadDir), 27u);
  EXPECT_EQ(Slot(&Camera::TraverseDir), 28u);
  EXPECT_EQ(Slot(&Camera::GetDoneCmdCount), 29u);
  EXPECT_EQ(Slot(&Camera::DeleteDcfObject), 30u);
  EXPECT_EQ(Slot(&Camera::DeleteFile), 31u);
  EXPECT_EQ(Slot(&Camera::BatteryLevel), 32u);
}

TEST(CameraTable, TransportOperationsComeLast) {
  EXPECT_EQ(Slot(&Camera::IsScsiInquiryCorrect), 33u);
  EXPECT_EQ(Slot(&Camera::MonitorKnockCmd), 34u);
  EXPECT_EQ(Slot(&Camera::Cancel), 35u);
  EXPECT_EQ(Slot(&Camera::ClearCancel), 36u);
  EXPECT_EQ(Slot(&Camera::IsOpen), 37u);
  EXPECT_EQ(Slot(&Camera::Transfer), 38u);
  EXPECT_EQ(Slot(&Camera::CompareSn), 39u);
  EXPECT_EQ(Slot(&Camera::operator==), 40u);
}

class Counted : public PlainCamera {
 public:
  explicit Counted(int* destroyed) : destroyed_(destroyed) {}
  ~Counted() override { ++*destroyed_; }
  bool Transfer(const _VscCdb&, int, int&, char*, bool) override { return false; }

 private:
  int* destroyed_;
};

void* const* TableOf(const Camera* camera) {
  void* const* table = nullptr;
  std::memcpy(&table, static_cast<const void*>(camera), sizeof table);
  return table;
}

template <typename Function>
Function At(const Camera* camera, std::size_t slot) {
  Function function = nullptr;
  std::memcpy(&function, TableOf(camera) + slot, sizeof function);
  return function;
}

TEST(CameraTable, CallsThroughTheTableReachTheOperations) {
  int destroyed = 0;
  Counted camera(&destroyed);
  EXPECT_EQ(At<std::string (*)(const Camera*)>(&camera, 2)(&camera), "Plain");
  EXPECT_FALSE(At<bool (*)(Camera*)>(&camera, 34)(&camera));
  EXPECT_TRUE(At<bool (*)(Camera*)>(&camera, 37)(&camera));
  EXPECT_FALSE(At<bool (*)(const Camera*, const Camera*)>(&camera, 40)(&camera, &camera));
  EXPECT_EQ(camera.calls, wifi_testing::Calls{"IsOpen"});
}

TEST(CameraTable, SlotZeroDestroysAndSlotOneDeletes) {
  int destroyed = 0;
  alignas(Counted) unsigned char place[sizeof(Counted)];
  Camera* const placed = new (place) Counted(&destroyed);
  At<void (*)(Camera*)>(placed, 0)(placed);
  EXPECT_EQ(destroyed, 1);

  Camera* const allocated = new Counted(&destroyed);
  At<void (*)(Camera*)>(allocated, 1)(allocated);
  EXPECT_EQ(destroyed, 2);
}

// Reads the members where they lie, by their own pointers to members.
struct Opened : PlainCamera {
  using PlainCamera::PlainCamera;
  bool Transfer(const _VscCdb&, int, int&, char*, bool) override { return false; }
  std::size_t OffsetOf(const int& member) const {
    return static_cast<std::size_t>(reinterpret_cast<const char*>(&member) -
                                    reinterpret_cast<const char*>(static_cast<const Camera*>(this)));
  }
};

TEST(CameraObject, HoldsTheSwitchAndTheTwoSizesInOrder) {
  Opened camera(16, 32);
  EXPECT_EQ(sizeof(Camera), 24u);
  EXPECT_EQ(alignof(Camera), 8u);
  EXPECT_EQ(camera.OffsetOf(camera.chunkSize_), 12u);
  EXPECT_EQ(camera.OffsetOf(camera.progressInterval_), 16u);

  const auto* const bytes = reinterpret_cast<const unsigned char*>(static_cast<const Camera*>(&camera));
  EXPECT_EQ(bytes[8], 0);
  camera.setHexDump(true);
  EXPECT_EQ(bytes[8], 1);
}

TEST(CameraRecords, HaveTheSizesOfTheirTables) {
  EXPECT_EQ(sizeof(_VscCdb), 16u);
  EXPECT_EQ(sizeof(_VscCdbTime), 14u);
  EXPECT_EQ(sizeof(_VscCdbCameraInformation), 644u);
  EXPECT_EQ(sizeof(DcfObj), 128u);
  EXPECT_EQ(sizeof(_VscWifiType), 4u);
  EXPECT_EQ(sizeof(_VscWifiAuthType), 4u);
  EXPECT_EQ(sizeof(_ManualControlsState), 40u);
  EXPECT_EQ(sizeof(CameraDirent), sizeof(std::string) + 8);
  EXPECT_EQ(offsetof(CameraDirent, size), sizeof(std::string));
  EXPECT_EQ(offsetof(CameraDirent, attributes), sizeof(std::string) + 4);
  EXPECT_EQ(offsetof(_Sha1obj, name), sizeof(std::vector<char>));
  EXPECT_EQ(offsetof(_Sha1obj, size), sizeof(std::vector<char>) + sizeof(std::string));
}

TEST(CameraRecords, FieldsHaveTheTypesOfTheirTables) {
  EXPECT_TRUE((std::is_same_v<decltype(_ManualControlsState::first), int>));
  EXPECT_TRUE((std::is_same_v<decltype(_ManualControlsState::third), float>));
  EXPECT_TRUE((std::is_same_v<decltype(_ManualControlsState::fourth), double>));
  EXPECT_TRUE((std::is_same_v<decltype(_ManualControlsState::fifth), double>));
  EXPECT_TRUE((std::is_same_v<decltype(_ManualControlsState::sixth), int>));
  EXPECT_TRUE((std::is_same_v<decltype(DcfObj::hasJpg), unsigned int>));
  EXPECT_TRUE((std::is_same_v<decltype(DcfObj::value6), float>));
  EXPECT_TRUE((std::is_same_v<decltype(_Sha1obj::size), unsigned int>));
  EXPECT_TRUE((std::is_same_v<decltype(CameraDirent::size), int>));
}

}  // namespace
