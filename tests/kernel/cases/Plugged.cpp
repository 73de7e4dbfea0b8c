#include "tests/kernel/cases/Plugged.h"

#include <chrono>
#include <filesystem>
#include <fstream>

#include "tests/kernel/cases/Tap.h"
#include "vcam/usbip/VhciPort.h"

namespace {

namespace fs = std::filesystem;
using vcam::usbip::Speed;

std::string LineOf(const fs::path& file) {
  std::string line;
  std::ifstream stream(file);
  std::getline(stream, line);
  return line;
}

// The serial number of the USB device above a SCSI generic entry.
std::string SerialAbove(const fs::path& entry) {
  std::error_code error;
  for (fs::path at = fs::canonical(entry, error); !error && at.has_relative_path(); at = at.parent_path()) {
    if (fs::exists(at / "idVendor")) return LineOf(at / "serial");
  }
  return {};
}

std::uint32_t DeviceId(Speed speed) {
  return vcam::usbip::OfferOf(speed).DeviceId();
}

base::FileDescriptor PlugIn(Speed speed) {
  return vcam::usbip::PlugIntoController(vcam::usbip::DefaultController(), DeviceId(speed), speed);
}

}  // namespace

std::string NodeOf(const std::string& serial) {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator("/sys/class/scsi_generic", error)) {
    if (SerialAbove(entry.path()) != serial) continue;
    const bool known = fs::exists("/run/udev/data/c" + LineOf(entry.path() / "dev"));
    return known ? "/dev/" + entry.path().filename().string() : "";
  }
  return {};
}

bool Eventually(const std::function<bool()>& condition, double seconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return true;
}

Plugged::Plugged(vcam::Options options, Speed speed)
    : camera_(std::move(options)),
      usb_(vcam::usbip::ModelOf(camera_, cable_, speed)),
      session_(PlugIn(speed), DeviceId(speed), usb_),
      server_([this] { session_.Run(); }) {
  const std::string serial = camera_.GetOptions().serial;
  const bool there = Eventually([&] { return !(node_ = NodeOf(serial)).empty(); });
  if (!there) Pull(), server_.join();
  tap::Check(there, "camera " + serial + " was plugged in and never got a node");
}

Plugged::~Plugged() {
  Pull();
  if (server_.joinable()) server_.join();
  const std::string node = fs::path(node_).filename();
  Eventually([&] { return !fs::exists("/sys/class/scsi_generic/" + node) && !fs::exists(node_); });
}
