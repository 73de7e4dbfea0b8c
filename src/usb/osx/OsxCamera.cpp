// The camera object: its session with the driver, and the SCSI pass-through.

#include "OsxCamera.h"

#include "IoKitOwners.h"
#include "LossInProgress.h"
#include "UserClientTransfer.h"
#include "wire/RegistryNames.h"

namespace {

constexpr int kChunkSize = 65536;
constexpr int kProgressInterval = 262144;

// Shows in the report that a failed call wrote no status.
constexpr std::uint32_t kNoStatus = 0xFFFFFFFF;

}  // namespace

OsxCamera::OsxCamera(unsigned int service)
    : Camera(kChunkSize, kProgressInterval),
      notification_(0),
      service_(service),
      connect_(0),
      lostCb_(nullptr),
      lostContext_(nullptr),
      disconnected_(false) {}

OsxCamera::~OsxCamera() {
  if (connect_ != 0) OsxCamera::Close();
  if (notification_ != 0) IOObjectRelease(notification_);
  IOObjectRelease(service_);
  kelva::LossInProgress::CameraDestroyed(this);
}

std::string OsxCamera::Name() const {
  return "Camera";
}

std::string OsxCamera::MountPath() const {
  return {};
}

bool OsxCamera::Open() {
  if (connect_ != 0) return true;
  // Return code ignored: selector 0 fails on a connection that did not open.
  IOServiceOpen(service_, mach_task_self(), 0, &connect_);
  if (IOConnectCallScalarMethod(connect_, wire::kUserClientStartSession, nullptr, 0, nullptr, nullptr) ==
      kIOReturnSuccess) {
    return true;
  }
  IOServiceClose(connect_);
  connect_ = 0;
  return false;
}

void OsxCamera::Close() {
  if (connect_ == 0) return;
  IOConnectCallScalarMethod(connect_, wire::kUserClientEndSession, nullptr, 0, nullptr, nullptr);
  IOServiceClose(connect_);
  connect_ = 0;
}

bool OsxCamera::IsOpen() {
  return connect_ != 0;
}

bool OsxCamera::Transfer(const _VscCdb& cdb, int direction, int& size, char* buffer, bool) {
  const wire::UserClientTransferRequest request = kelva::MakeTransferRequest(cdb, direction, size, buffer);
  wire::UserClientTransferResult result{kNoStatus, 0};
  std::size_t resultSize = sizeof(result);
  const kern_return_t returnCode =
      IOConnectCallStructMethod(connect_, wire::kUserClientTransfer, &request, sizeof(request), &result, &resultSize);
  if (returnCode != kIOReturnSuccess || result.status != 0) {
    throw CameraTransferError(kelva::WriteTransferReport({cdb, returnCode, result.status}));
  }
  size = result.actualLength;
  return true;
}

bool OsxCamera::IsScsiInquiryCorrect() const {
  return Equals(kelva::CopyProperty(service_, wire::kVendorName), wire::kVendor) &&
         Equals(kelva::CopyProperty(service_, wire::kClassName), wire::kDriverClass);
}

io_service_t kelva::ServiceOf(const Camera& camera) {
  const auto* attached = dynamic_cast<const OsxCamera*>(&camera);
  return attached != nullptr ? attached->service_ : 0;
}

bool OsxCamera::Cancel(bool, bool) {
  return false;
}

void OsxCamera::ClearCancel(bool) {}
