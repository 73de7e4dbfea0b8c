#include <limits>
#include <utility>

#include "vcam/device/BatchText.h"
#include "vcam/device/Bundles.h"
#include "vcam/device/CameraPath.h"
#include "vcam/device/Catalogue.h"
#include "vcam/device/Handlers.h"
#include "vcam/device/Information.h"
#include "vcam/device/Listing.h"
#include "vcam/device/Pictures.h"
#include "vcam/device/Replies.h"
#include "vcam/device/SenseCodes.h"
#include "wifi/VscRegister.h"

namespace vcam {
namespace {

constexpr std::uint64_t kMaxDataSet = std::numeric_limits<std::uint32_t>::max();

std::uint32_t MovedBy(const Command& command) {
  return command.direction == Direction::kToCamera ? static_cast<std::uint32_t>(command.data.size()) : 0;
}

Reply Prepared(Device& device, const Command& command, DataSet data, std::uint8_t readSubcode) {
  if (data.size() > kMaxDataSet) return Refuse(sense::kOutOfRange);
  device.selected = Device::Selected{std::move(data), readSubcode};
  return Done(MovedBy(command));
}

Reply SelectInformation(Device& device, const Command& command) {
  DataSet data;
  data.AddBytes(InformationRecord(device, data.marks));
  return Prepared(device, command, std::move(data), vsc::read_chunk::kSelected);
}

Reply OpenForReading(Device& device, const Command& command, const std::string& path) {
  OpenedFile opened = device.storage.OpenForReading(path);
  if (!opened.file) return Refuse(SenseOfErrno(opened.error));
  DataSet data;
  data.AddOpenFile(std::move(opened.file), opened.stamp.size);
  return Prepared(device, command, std::move(data), vsc::read_chunk::kSelected);
}

Reply OpenForWriting(Device& device, const Command& command, const std::string& path) {
  OpenedFile opened = device.storage.OpenForWriting(path);
  if (!opened.file) return Refuse(SenseOfErrno(opened.error));
  device.writing = Device::WriteTarget{std::move(opened.file), CameraPath(path), 0};
  return Done(MovedBy(command));
}

Reply SelectFile(Device& device, const Command& command) {
  const std::optional<std::string> text = TextOf(command);
  if (!text) return Refuse(sense::kWrongDataLength);
  const std::optional<std::string> path = RelativePath(*text);
  if (!path || path->empty()) return Refuse(sense::kBadParameter);
  if (command.cdb[vsc::at::kParameter] > vsc::kSelectForWriting) return Refuse(sense::kBadCommandField);
  return command.cdb[vsc::at::kParameter] == vsc::kSelectForWriting ? OpenForWriting(device, command, *path)
                                                                    : OpenForReading(device, command, *path);
}

std::string KeyOfFirstFile(Device& device, const Picture& picture) {
  for (std::size_t type = 0; type < picture.files.size(); ++type)
    if (picture.files[type]) return device.keys.KeyOf(device.storage, picture.PathOf(type), *picture.files[type]);
  return {};
}

Reply SelectCatalogue(Device& device, const Command& command) {
  std::vector<Bytes> records;
  for (const Picture& picture : FindPictures(device.storage))
    records.push_back(
        PlainRecord(picture, device.options.keysInCatalogue ? KeyOfFirstFile(device, picture) : std::string()));
  return Prepared(device, command, BuildCatalogue(records, device.options.catalogue), vsc::read_chunk::kSelected);
}

Reply SelectListing(Device& device, const Command& command) {
  const std::optional<std::string> text = TextOf(command);
  if (!text) return Refuse(sense::kWrongDataLength);
  const std::optional<std::string> path = RelativePath(*text);
  if (!path) return Refuse(sense::kBadParameter);
  if (!device.storage.HasDirectory(*path)) return Refuse(sense::kNotFound);
  return Prepared(device, command, BuildListing(device.storage.List(*path), path->empty()), vsc::read_chunk::kSelected);
}

/// The file with this key, or the file of the same picture with another extension; without a path when there is none.
BundleFile FindItem(Device& device, const BatchItem& item) {
  const std::vector<KeyedFile> files = device.keys.Find(item.key);
  if (files.empty()) return {};
  if (item.extension.empty()) return {{}, files.front().path, files.front().size};
  const std::string& path = files.front().path;
  const std::string sibling = path.substr(0, path.rfind('.') + 1) + item.extension;
  if (!ParseFileName(path.substr(path.rfind('/') + 1))) return {};
  const OpenedFile opened = device.storage.OpenForReading(sibling);
  return opened.file ? BundleFile{{}, sibling, opened.stamp.size} : BundleFile{};
}

Reply SelectBatch(Device& device, const Command& command) {
  const std::optional<std::string> text = TextOf(command);
  if (!text) return Refuse(sense::kWrongDataLength);
  const auto items = ParseBatchText(*text);
  if (!items) return Refuse(sense::kBadParameter);
  device.keys.Refresh(device.storage);
  std::vector<BundleFile> files;
  for (const BatchItem& item : *items) files.push_back(FindItem(device, item));
  return Prepared(device, command, BuildBatchBundle(files), vsc::read_chunk::kBundle);
}

Reply SelectCompressedRaw(Device& device, const Command& command) {
  const std::optional<std::string> text = TextOf(command);
  if (!text) return Refuse(sense::kWrongDataLength);
  if (!IsKey(*text)) return Refuse(sense::kBadParameter);
  device.keys.Refresh(device.storage);
  const BundleFile raw = FindItem(device, {*text, "RAW"});
  if (raw.path.empty()) return Refuse(sense::kNotFound);
  return Prepared(device, command, BuildCompressedRawBundle(raw), vsc::read_chunk::kBundle);
}

Reply SelectCrashLogs(Device& device, const Command& command) {
  return Prepared(device, command, BuildCrashLogBundle(FindCrashLogs(device.storage)), vsc::read_chunk::kBundle);
}

Reply SelectCalibration(Device& device, const Command& command) {
  return Prepared(device, command, BuildCalibrationBundle(FindCalibration(device.storage)), vsc::read_chunk::kBundle);
}

Reply Select(Device& device, const Command& command) {
  switch (command.cdb[vsc::at::kSubCode]) {
    case vsc::select::kInformation:
      return SelectInformation(device, command);
    case vsc::select::kFile:
      return SelectFile(device, command);
    case vsc::select::kCatalogue:
      return SelectCatalogue(device, command);
    case vsc::select::kDirectory:
      return SelectListing(device, command);
    case vsc::select::kBatch:
      return SelectBatch(device, command);
    case vsc::select::kCalibration:
      return SelectCalibration(device, command);
    case vsc::select::kCompressedRaw:
      return SelectCompressedRaw(device, command);
    case vsc::select::kCrashLogs:
      return SelectCrashLogs(device, command);
    default:
      return Refuse(sense::kBadCommandField);
  }
}

bool TakesText(std::uint8_t selection) {
  return selection == vsc::select::kFile || selection == vsc::select::kDirectory || selection == vsc::select::kBatch ||
         selection == vsc::select::kCompressedRaw;
}

}  // namespace

Reply HandleSelect(Device& device, const Command& command) {
  if (!TakesText(command.cdb[vsc::at::kSubCode]) && !HasNoData(command)) return Refuse(sense::kWrongDataLength);
  // Whatever was selected is gone, also when this selection is refused.
  device.selected.reset();
  device.writing.reset();
  device.upgrade.Abandon();
  return Select(device, command);
}

}  // namespace vcam
