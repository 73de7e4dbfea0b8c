// A machine for tests: devices, messages and permissions that the test sets.

#include "darwin/udev/testing/FakeMachine.h"

#include <algorithm>
#include <cerrno>

namespace darwin::udev {

ScsiUnit FakeMachine::Camera(const std::string& serial, const std::string& path) {
  ScsiUnit unit;
  unit.path = path;
  unit.node = "/dev/" + path.substr(path.rfind('/') + 1);
  unit.vendor = "Kelva";
  unit.product = "Glimmer";
  unit.revision = "1.00";
  unit.serial = serial;
  unit.usbAddress = "1:" + serial;
  return unit;
}

void FakeMachine::Queue(Notice::Kind kind, const std::string& path) {
  ++sequence_;
  queue_.push_back({kind, path, numbersEvents ? sequence_ : 0, std::nullopt});
}

void FakeMachine::Plug(const ScsiUnit& unit) {
  present_[unit.path] = unit;
  Queue(Notice::Kind::kSeen, unit.path);
}

void FakeMachine::Unplug(const std::string& path) {
  present_.erase(path);
  Queue(Notice::Kind::kGone, path);
}

std::vector<std::string> FakeMachine::Published() const {
  std::vector<std::string> serials;
  for (const auto& [id, serial] : published_) serials.push_back(serial);
  std::sort(serials.begin(), serials.end());
  return serials;
}

std::vector<std::string> FakeMachine::Present() const {
  std::vector<std::string> serials;
  for (const auto& [path, unit] : present_) serials.push_back(unit.serial);
  std::sort(serials.begin(), serials.end());
  return serials;
}

std::vector<ScsiUnit> FakeMachine::Enumerate() {
  std::vector<ScsiUnit> units;
  for (const auto& [path, unit] : present_) units.push_back(unit);
  return units;
}

std::optional<ScsiUnit> FakeMachine::Look(const std::string& path) {
  const auto found = present_.find(path);
  return found == present_.end() ? std::nullopt : std::optional(found->second);
}

Notice FakeMachine::Receive() {
  ++receives_;
  if (alwaysLoses) return {Notice::Kind::kLost};
  if (receives_ == overflowAt_) {
    queue_.resize(std::min(kept_, queue_.size()));
    return {Notice::Kind::kLost};
  }
  if (queue_.empty()) return {};
  Notice notice = queue_.front();
  queue_.pop_front();
  if (notice.kind == Notice::Kind::kSeen) {
    notice.unit = Look(notice.path);  // sysfs is read when a message is taken
  }
  return notice;
}

int FakeMachine::WhyNotUsable(const std::string& node) {
  const auto found = usableAt.find(node);
  if (found != usableAt.end()) return now >= found->second ? 0 : EACCES;
  return unusable.contains(node) ? EACCES : 0;
}

EntryId FakeMachine::Publish(const ScsiUnit& unit) {
  ++publishes;
  published_[nextId_] = unit.serial;
  return nextId_++;
}

}  // namespace darwin::udev
