// The interface to the letter: no operation has gained or lost a const, a noexcept, an argument or another result. Programs
// take the addresses of these and override them. Compiled, not run.
#include <boost/shared_ptr.hpp>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "src/usb/osx/OsxCamera.h"
#include "src/usb/osx/OsxCameraError.h"

namespace {

using Text = std::string;
using Progress = void (*)(void*, float);
using CameraPointer = boost::shared_ptr<Camera>;
using Attached = void (*)(CameraPointer, void*);
using Notified = void (*)(void*);
using Files = std::vector<_Sha1obj>;
using Bytes = std::vector<char>;
using Keys = std::vector<Text>;
using Tree = std::vector<std::pair<Text, long long>>;
using Numbers = std::vector<unsigned int>;

template <class Wanted, class Given>
constexpr void Has(Given) {
  static_assert(std::is_same_v<Wanted, Given>);
}

[[maybe_unused]] void OperationsOfCamera() {
  Has<Text (Camera::*)() const>(&Camera::Name);
  Has<Text (Camera::*)() const>(&Camera::MountPath);
  Has<bool (Camera::*)()>(&Camera::Open);
  Has<void (Camera::*)()>(&Camera::Close);
  Has<void (Camera::*)(Notified, void*)>(&Camera::ListenForCameraLost);
  Has<bool (Camera::*)()>(&Camera::IsReady);
  Has<bool (Camera::*)()>(&Camera::WasDisconnected);
  Has<bool (Camera::*)(const char*)>(&Camera::MonitorCmd);
  Has<bool (Camera::*)(const char*)>(&Camera::MonitorCmdSingleChar);
  Has<std::vector<DcfObj> (Camera::*)()>(&Camera::GetDcf);
  Has<Files (Camera::*)(Keys, Keys, Progress, void*, bool)>(&Camera::ReadFilesBySha1);
  Has<bool (Camera::*)(Keys, bool)>(&Camera::DeleteBatch);
  Has<Files (Camera::*)(Progress, void*, bool)>(&Camera::ReadCalibration);
  Has<Files (Camera::*)(Progress, void*, bool, bool)>(&Camera::ReadCrashLogs);
  Has<Bytes (Camera::*)(const char*, Progress, void*, bool)>(
      static_cast<Bytes (Camera::*)(const char*, Progress, void*, bool)>(&Camera::ReadFile));
  Has<Bytes (Camera::*)(const DcfObj&, int, Progress, void*, bool)>(
      static_cast<Bytes (Camera::*)(const DcfObj&, int, Progress, void*, bool)>(&Camera::ReadFile));
  Has<Files (Camera::*)(Text, Progress, void*, bool)>(&Camera::ReadCompressedRaw);
  Has<void (Camera::*)(const char*, const char*, int, Progress, void*)>(&Camera::WriteFile);
  Has<void (Camera::*)(const char*, int, Progress, void*)>(&Camera::Upgrade);
  Has<void (Camera::*)(float&, bool&, bool&)>(&Camera::UpgradeStatus);
  Has<bool (Camera::*)(_VscCdbCameraInformation&)>(&Camera::CameraInformation);
  Has<Text (Camera::*)(bool&)>(&Camera::ConsoleLog);
  Has<void (Camera::*)()>(&Camera::Reboot);
  Has<_VscCdbTime (Camera::*)()>(&Camera::GetTime);
  Has<void (Camera::*)(const _VscCdbTime&)>(&Camera::SetTime);
  Has<std::vector<CameraDirent> (Camera::*)(const char*)>(&Camera::ReadDir);
  Has<void (Camera::*)(const char*, Tree&)>(&Camera::TraverseDir);
  Has<int (Camera::*)()>(&Camera::GetDoneCmdCount);
  Has<bool (Camera::*)(const DcfObj&)>(&Camera::DeleteDcfObject);
  Has<bool (Camera::*)(const char*)>(&Camera::DeleteFile);
  Has<float (Camera::*)()>(&Camera::BatteryLevel);
  Has<bool (Camera::*)() const>(&Camera::IsScsiInquiryCorrect);
  Has<bool (Camera::*)()>(&Camera::MonitorKnockCmd);
  Has<bool (Camera::*)(bool, bool)>(&Camera::Cancel);
  Has<void (Camera::*)(bool)>(&Camera::ClearCancel);
  Has<bool (Camera::*)()>(&Camera::IsOpen);
  Has<bool (Camera::*)(const _VscCdb&, int, int&, char*, bool)>(&Camera::Transfer);
  Has<bool (Camera::*)(const char*) const>(&Camera::CompareSn);
  Has<bool (Camera::*)(const Camera&) const>(&Camera::operator==);
  Has<std::vector<CameraPointer> (*)(bool, Text, bool, int)>(&Camera::EnumerateCameras);
  Has<CameraPointer (*)(const char*, Text, bool, bool)>(&Camera::GetCamera);
  Has<void (*)(Attached, void*, bool)>(&Camera::ListenForCameraAttach);
  Has<void (*)(Notified, void*)>(&Camera::ListenForBadCameraAttach);
  Has<bool (Camera::*)(bool)>(&Camera::CaptureImage);
  Has<bool (Camera::*)(bool)>(&Camera::DisableWifi);
  Has<bool (Camera::*)(_VscWifiType, Text)>(&Camera::SetWifiSSID);
  Has<bool (Camera::*)(_VscWifiType, Text)>(&Camera::SetWifiPassphrase);
  Has<bool (Camera::*)(_VscWifiType, _VscWifiAuthType)>(&Camera::SetWifiAuthType);
  Has<bool (Camera::*)(_ManualControlsState&)>(&Camera::GetManualControlsState);
  Has<bool (Camera::*)(int, Text)>(&Camera::SetManualControl);
  Has<bool (*)(const _VscCdbDcfHeader*)>(&Camera::ValidateDcfHeader);
  Has<DcfObj (Camera::*)(const _VscCdbDcfHeader*, const char*)>(&Camera::UnpackDcf);
  Has<Text (*)(const DcfObj&, int)>(&Camera::DcfFilename);
  Has<bool (Camera::*)()>(&Camera::enableHexDump);
  Has<bool (Camera::*)()>(&Camera::disableHexDump);
  Has<bool (Camera::*)(bool)>(&Camera::setHexDump);
}

[[maybe_unused]] void FreeFunctions() {
  Has<Files (*)(const char*)>(&UnpackCrashLogHeader);
  Has<Files (*)(const char*)>(&UnpackCalibrationHeader);
  Has<Numbers (*)(unsigned int, const char*)>(&UnpackBatchHeader);
  Has<Numbers (*)(const char*)>(&UnpackRawCompressionHeader);
}

[[maybe_unused]] void StaticOperationsOfOsxCamera() {
  Has<std::vector<CameraPointer> (*)(bool)>(&OsxCamera::EnumerateOsxCameras);
  Has<void (*)(Attached, void*)>(&OsxCamera::ListenForOsxCameraAttach);
  Has<void (*)(Notified, void*)>(&OsxCamera::ListenForOsxBadCameraAttach);
  Has<void (*)()>(&OsxCamera::SetupNotifyPort);
  Has<void (*)(void*, unsigned int)>(&OsxCamera::AddDeviceBounce);
  Has<void (*)(void*, unsigned int)>(&OsxCamera::BadCameraBounce);
  Has<void (*)(void*, unsigned int, unsigned int, void*)>(&OsxCamera::CameraMessage);
}

static_assert(std::is_constructible_v<OsxCamera, unsigned int> && std::is_abstract_v<Camera> &&
              std::has_virtual_destructor_v<Camera>);
static_assert(!std::is_default_constructible_v<OsxCameraError> && std::is_default_constructible_v<CameraError> &&
              std::is_default_constructible_v<CameraTransferError>);
static_assert(std::is_base_of_v<CameraError, OsxCameraError> && std::is_base_of_v<CameraError, CameraTransferError>);
static_assert(std::is_same_v<decltype(Camera::throwExceptions_), bool>);

}  // namespace
