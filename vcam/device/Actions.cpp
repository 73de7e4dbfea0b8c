// Operation 0xC0, by sub-code: reboot, set the clock, delete, and the actions of other files.
#include <algorithm>
#include <cerrno>

#include "src/wifi/DcfObj.h"
#include "src/wifi/VscRegister.h"
#include "vcam/device/BatchText.h"
#include "vcam/device/CameraPath.h"
#include "vcam/device/Handlers.h"
#include "vcam/device/Pictures.h"
#include "vcam/device/Replies.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

constexpr std::size_t kIdentityLength = offsetof(DcfObj, hasJpg);

wire::Reply Taken(const wire::Command& command) {
  return Done(static_cast<std::uint32_t>(command.data.size()));
}

wire::Reply Reboot(Device& device, const wire::Command&) {
  device.selected.reset();
  device.writing.reset();
  device.upgrade.Abandon();
  device.doneCount = 0;
  device.readyAt = device.options.now() + device.options.bootTime;
  device.console.Log("reboot");
  return Done();
}

wire::Reply SetTime(Device& device, const wire::Command& command) {
  if (command.direction != wire::Direction::kToCamera || command.data.size() != kTimeLength) {
    return Refuse(sense::kWrongDataLength);
  }
  if (device.options.opaque) {
    device.givenTime.assign(command.data.begin(), command.data.end());
    return Taken(command);
  }
  if (!device.clock.Set(command.data)) return Refuse(sense::kBadParameter);
  device.settings.clockOffsetMs = device.clock.Offset().count();
  device.console.Log("clock set");
  const int error = device.Save();
  return error != 0 ? Refuse(SenseOfErrno(error)) : Taken(command);
}

wire::Reply Monitor(Device& device, const wire::Command& command, const std::string& text) {
  device.console.Log("> " + text);
  return Taken(command);
}

std::string FixedText(std::span<const std::uint8_t> field) {
  return {field.begin(), std::find(field.begin(), field.end(), std::uint8_t{0})};
}

bool Matches(const Picture& picture, const std::string& prefix, std::int32_t number) {
  return picture.prefix == prefix && picture.number == number;
}

/// Deletes every file of the picture; the first errno, or 0.
int RemovePicture(Device& device, const Picture& picture) {
  int error = 0;
  for (std::size_t type = 0; type < picture.files.size(); ++type) {
    if (!picture.files[type]) continue;
    const int failed = device.storage.Remove(picture.PathOf(type));
    if (error == 0) error = failed;
  }
  return error;
}

bool IsQualified(const BatchItem& item) {
  return !item.extension.empty();
}

/// Deletes every file with one of these keys; how many of them could not be deleted.
std::size_t RemoveByKeys(Device& device, const std::vector<BatchItem>& items) {
  std::size_t deleted = 0;
  std::size_t failed = 0;
  for (const BatchItem& item : items) {
    for (const KeyedFile& file : device.keys.Find(item.key)) {
      const int error = device.storage.Remove(file.path);
      deleted += static_cast<std::size_t>(error == 0);
      // The host may have named the same key twice.
      failed += static_cast<std::size_t>(error != 0 && error != ENOENT);
    }
  }
  device.console.Log("deleted " + std::to_string(deleted) + " files by key");
  return failed;
}

wire::Reply DeletePath(Device& device, const wire::Command& command, const std::string& text) {
  const std::optional<std::string> path = RelativePath(text);
  if (!path || path->empty()) return Refuse(sense::kBadParameter);
  const int error = device.storage.Remove(*path);
  if (error != 0) return Refuse(SenseOfErrno(error));
  device.console.Log("deleted " + text);
  return Taken(command);
}

wire::Reply DeletePicture(Device& device, const wire::Command& command) {
  if (command.direction != wire::Direction::kToCamera || command.data.size() != kIdentityLength) {
    return Refuse(sense::kWrongDataLength);
  }
  const std::string prefix = FixedText(command.data.subspan(offsetof(DcfObj, filePrefix), sizeof(DcfObj::filePrefix)));
  const PictureDirectory directory{
      base::Load<std::int32_t>(command.data, offsetof(DcfObj, directoryNumber)),
      FixedText(command.data.subspan(offsetof(DcfObj, directorySuffix), sizeof(DcfObj::directorySuffix)))};
  const auto number = base::Load<std::int32_t>(command.data, offsetof(DcfObj, fileNumber));
  const Picture place{directory, {}, 0, {}};
  if (directory.number < 100 || directory.number > 999 || !IsCameraName(place.DirectoryPath().substr(5))) {
    return Refuse(sense::kBadParameter);
  }
  const std::vector<Picture> pictures = FindPicturesIn(device.storage, directory);
  const auto found = std::find_if(pictures.begin(), pictures.end(),
                                  [&](const Picture& picture) { return Matches(picture, prefix, number); });
  if (found == pictures.end()) return Refuse(sense::kNotFound);
  const int error = RemovePicture(device, *found);
  if (error != 0) return Refuse(SenseOfErrno(error));
  device.console.Log("deleted picture " + prefix + std::to_string(number));
  return Taken(command);
}

wire::Reply DeleteBatch(Device& device, const wire::Command& command, const std::string& text) {
  const auto items = ParseBatchText(text);
  if (!items || std::any_of(items->begin(), items->end(), IsQualified)) return Refuse(sense::kBadParameter);
  device.RefreshKeys();
  const std::size_t failed = RemoveByKeys(device, *items);
  return failed != 0 ? Refuse(sense::kWriteProtected) : Taken(command);
}

constexpr Route kActions[] = {
    {kelva::action::kCaptureImage, WithoutData<CapturePicture>},
    {kelva::action::kDeleteFile, WithText<DeletePath>},
    {kelva::action::kEndUpgrade, WithoutData<HandleUpgradeEnd>},
    {kelva::action::kReboot, WithoutData<Reboot>},
    {kelva::action::kSetTime, SetTime},
    {kelva::action::kDeletePicture, DeletePicture},
    {kelva::action::kDeleteBatch, WithText<DeleteBatch>},
    {kelva::action::kWifiNameType0, WithText<SetNetworkName>},
    {kelva::action::kWifiNameType1, WithText<SetNetworkName>},
    {kelva::action::kWifiPassphraseType0, WithText<SetPassphrase>},
    {kelva::action::kWifiPassphraseType1, WithText<SetPassphrase>},
    {kelva::action::kWifiAuthType, WithoutData<NoteAuthType>},
    {kelva::action::kManualControl, WithoutData<NoteManualControl>},
    {kelva::action::kDisableWifi, WithoutData<SwitchWifiOff>},
    {kelva::action::kMonitorSingleChar, WithText<Monitor>},
    {kelva::action::kMonitorLine, WithText<Monitor>},
};

}  // namespace

wire::Reply HandleAction(Device& device, const wire::Command& command) {
  return Follow(kActions, command.cdb[kelva::at::kSubCode], device, command);
}

}  // namespace vcam
