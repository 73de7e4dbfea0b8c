// Operation 0xC2, by sub-code: prepares what the host then reads, or opens the file that it then writes.
#include <limits>
#include <utility>

#include "src/wifi/DcfObj.h"
#include "src/wifi/VscRegister.h"
#include "vcam/device/BatchText.h"
#include "vcam/device/Bundles.h"
#include "vcam/device/CameraPath.h"
#include "vcam/device/Catalogue.h"
#include "vcam/device/Handlers.h"
#include "vcam/device/Information.h"
#include "vcam/device/Listing.h"
#include "vcam/device/Opaque.h"
#include "vcam/device/Pictures.h"
#include "vcam/device/Replies.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

constexpr std::uint64_t kMaxDataSet = std::numeric_limits<std::uint32_t>::max();

std::uint32_t MovedBy(const wire::Command& command) {
  return command.direction == wire::Direction::kToCamera ? static_cast<std::uint32_t>(command.data.size()) : 0;
}

wire::Reply Prepared(Device& device, const wire::Command& command, DataSet data, std::uint8_t readSubcode) {
  if (data.Size() > kMaxDataSet) return Refuse(sense::kOutOfRange);
  device.selected = Device::Selected{std::move(data), readSubcode};
  return Done(MovedBy(command));
}

wire::Reply SelectInformation(Device& device, const wire::Command& command) {
  DataSet data;
  data.AddBytes(InformationRecord(device, data.marks));
  return Prepared(device, command, std::move(data), kelva::read_chunk::kSelected);
}

wire::Reply OpenForReading(Device& device, const wire::Command& command, const std::string& path) {
  OpenedFile opened = device.storage.OpenForReading(path);
  if (!opened.file) return Refuse(SenseOfErrno(opened.error));
  DataSet data;
  data.AddOpenFile(std::move(opened.file), opened.stamp.size);
  return Prepared(device, command, std::move(data), kelva::read_chunk::kSelected);
}

wire::Reply OpenForWriting(Device& device, const wire::Command& command, const std::string& path) {
  OpenedFile opened = device.storage.OpenForWriting(path);
  if (!opened.file) return Refuse(SenseOfErrno(opened.error));
  device.writing = Device::WriteTarget{std::move(opened.file), CameraPath(path), 0};
  return Done(MovedBy(command));
}

wire::Reply SelectFile(Device& device, const wire::Command& command, const std::string& text) {
  const std::optional<std::string> path = RelativePath(text);
  if (!path || path->empty()) return Refuse(sense::kBadParameter);
  if (command.cdb[kelva::at::kParameter] > kelva::kSelectForWriting) return Refuse(sense::kBadCommandField);
  return command.cdb[kelva::at::kParameter] == kelva::kSelectForWriting ? OpenForWriting(device, command, *path)
                                                                        : OpenForReading(device, command, *path);
}

std::string KeyOfFirstFile(Device& device, const Picture& picture) {
  for (std::size_t type = 0; type < picture.files.size(); ++type) {
    if (picture.files[type]) return device.keys.KeyOf(device.storage, picture.PathOf(type), *picture.files[type]);
  }
  return {};
}

wire::Reply SelectCatalogue(Device& device, const wire::Command& command) {
  std::vector<base::Bytes> records;
  for (const Picture& picture : FindPictures(device.storage)) {
    base::Bytes& record = records.emplace_back(
        PlainRecord(picture, device.options.hasKeys ? KeyOfFirstFile(device, picture) : std::string()));
    const std::string name(record.begin(), record.begin() + offsetof(DcfObj, hasJpg));
    MakeOpaque(device.options.opaque, name, std::span(record).subspan(offsetof(DcfObj, value5)));
  }
  return Prepared(device, command, BuildCatalogue(records, device.options.catalogue), kelva::read_chunk::kSelected);
}

wire::Reply SelectListing(Device& device, const wire::Command& command, const std::string& text) {
  const std::optional<std::string> path = RelativePath(text);
  if (!path) return Refuse(sense::kBadParameter);
  if (!device.storage.HasDirectory(*path)) return Refuse(sense::kNotFound);
  return Prepared(device, command, BuildListing(device.storage.List(*path), path->empty()),
                  kelva::read_chunk::kSelected);
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

wire::Reply SelectBatch(Device& device, const wire::Command& command, const std::string& text) {
  const auto items = ParseBatchText(text);
  if (!items) return Refuse(sense::kBadParameter);
  device.RefreshKeys();
  std::vector<BundleFile> files;
  for (const BatchItem& item : *items) files.push_back(FindItem(device, item));
  return Prepared(device, command, BuildBatchBundle(files), kelva::read_chunk::kBundle);
}

wire::Reply SelectCompressedRaw(Device& device, const wire::Command& command, const std::string& text) {
  if (!IsKey(text)) return Refuse(sense::kBadParameter);
  device.RefreshKeys();
  const BundleFile raw = FindItem(device, {text, "RAW"});
  if (raw.path.empty()) return Refuse(sense::kNotFound);
  return Prepared(device, command, BuildCompressedRawBundle(raw), kelva::read_chunk::kBundle);
}

wire::Reply SelectCrashLogs(Device& device, const wire::Command& command) {
  return Prepared(device, command, BuildCrashLogBundle(FindCrashLogs(device.storage)), kelva::read_chunk::kBundle);
}

wire::Reply SelectCalibration(Device& device, const wire::Command& command) {
  return Prepared(device, command, BuildCalibrationBundle(FindCalibration(device.storage)), kelva::read_chunk::kBundle);
}

constexpr Route kSelections[] = {
    {kelva::select::kInformation, SelectInformation},
    {kelva::select::kFile, WithText<SelectFile>},
    {kelva::select::kCatalogue, SelectCatalogue},
    {kelva::select::kDirectory, WithText<SelectListing>},
    {kelva::select::kBatch, WithText<SelectBatch>},
    {kelva::select::kCalibration, SelectCalibration},
    {kelva::select::kCompressedRaw, WithText<SelectCompressedRaw>},
    {kelva::select::kCrashLogs, SelectCrashLogs},
};

bool TakesText(std::uint8_t selection) {
  return selection == kelva::select::kFile || selection == kelva::select::kDirectory ||
         selection == kelva::select::kBatch || selection == kelva::select::kCompressedRaw;
}

}  // namespace

wire::Reply HandleSelect(Device& device, const wire::Command& command) {
  if (!TakesText(command.cdb[kelva::at::kSubCode]) && !HasNoData(command)) return Refuse(sense::kWrongDataLength);
  // A selection that is refused still drops the one before it.
  device.selected.reset();
  device.writing.reset();
  device.upgrade.Abandon();
  return Follow(kSelections, command.cdb[kelva::at::kSubCode], device, command);
}

}  // namespace vcam
