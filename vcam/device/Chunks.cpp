// Operations that move data piece by piece: reading a selection, writing a file, receiving firmware.
#include <algorithm>
#include <cerrno>
#include <limits>

#include "vcam/device/Handlers.h"
#include "vcam/device/Replies.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

constexpr std::uint64_t kMaxFile = std::numeric_limits<std::uint32_t>::max();

bool WriteFully(int file, std::uint64_t offset, std::span<const std::uint8_t> data) {
  while (!data.empty()) {
    const ssize_t count = ::pwrite(file, data.data(), data.size(), static_cast<off_t>(offset));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    data = data.subspan(static_cast<std::size_t>(count));
    offset += static_cast<std::uint64_t>(count);
  }
  return true;
}

wire::Reply WriteToFile(Device& device, std::uint32_t offset, std::span<const std::uint8_t> data) {
  Device::WriteTarget& target = *device.writing;
  if (offset > target.size || offset + data.size() > kMaxFile) return Refuse(sense::kOutOfRange);
  if (!WriteFully(target.file.Get(), offset, data)) return Refuse(SenseOfErrno(errno));
  target.size = std::max<std::uint64_t>(target.size, offset + data.size());
  return Done(static_cast<std::uint32_t>(data.size()));
}

}  // namespace

wire::Reply HandleReadChunk(Device& device, const wire::Command& command) {
  if (!device.selected || device.selected->readSubcode != command.cdb[kelva::at::kSubCode]) {
    return Refuse(sense::kWrongSequence);
  }
  if (!MayAnswer(command)) return Refuse(sense::kBadCommandField);
  DataSet& data = device.selected->data;
  const std::uint64_t offset = device.options.forwardOnly
                                   ? device.selected->next
                                   : base::Load<std::uint32_t>(command.cdb, kelva::at::kReadOffset);
  if (offset > data.Size()) return Refuse(sense::kOutOfRange);
  if (command.direction == wire::Direction::kNone) return Done();
  base::Bytes bytes(static_cast<std::size_t>(std::min<std::uint64_t>(command.length, data.Size() - offset)));
  if (!data.Read(device.storage, offset, bytes)) return Refuse(sense::kReadError);
  device.selected->next = offset + bytes.size();
  return Answer(command, std::move(bytes));
}

wire::Reply HandleWriteChunk(Device& device, const wire::Command& command) {
  if (command.direction != wire::Direction::kToCamera) return Refuse(sense::kWrongDataLength);
  const auto offset = base::Load<std::uint32_t>(command.cdb, kelva::at::kWriteOffset);
  if (device.writing) return WriteToFile(device, offset, command.data);
  if (!device.upgrade.Receiving()) return Refuse(sense::kWrongSequence);
  if (!device.upgrade.Receive(offset, command.data)) return Refuse(sense::kOutOfRange);
  return Done(static_cast<std::uint32_t>(command.data.size()));
}

wire::Reply HandleWriteEnd(Device& device, const wire::Command& command) {
  if (command.cdb[kelva::at::kSubCode] != 0) return Refuse(sense::kBadCommandField);
  if (!device.writing) return Refuse(sense::kWrongSequence);
  device.console.Log("wrote " + device.writing->path + ", " + std::to_string(device.writing->size) + " bytes");
  device.writing.reset();
  return Done();
}

wire::Reply HandleUpgradeStart(Device& device, const wire::Command& command) {
  const auto length = base::Load<std::uint32_t>(command.cdb, kelva::at::kUpgradeLength);
  device.writing.reset();
  device.upgrade.Start(length);
  device.console.Log("upgrade announced, " + std::to_string(length) + " bytes");
  return Done();
}

wire::Reply HandleUpgradeEnd(Device& device, const wire::Command&) {
  const bool doomed = std::exchange(device.nextUpgradeFails, false);
  if (!device.upgrade.Finish(device.options.now(), device.options.upgradeTime, doomed)) {
    return Refuse(sense::kWrongSequence);
  }
  device.console.Log("upgrade received");
  return Done();
}

}  // namespace vcam
