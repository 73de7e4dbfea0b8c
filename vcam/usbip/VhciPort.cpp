// Plugs the camera into the kernel's virtual USB controller, without the `usbip` command.
#include "vcam/usbip/VhciPort.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace vcam::usbip {
namespace {

constexpr std::string_view kFreeState = "004";
constexpr int kAttempts = 100;

std::optional<unsigned> PortOfLine(const std::string& line, std::string_view hub) {
  std::istringstream words(line);
  std::string kind;
  std::string port;
  std::string state;
  if (!(words >> kind >> port >> state) || kind != hub || state != kFreeState) return std::nullopt;
  unsigned number = 0;
  const auto read = std::from_chars(port.data(), port.data() + port.size(), number);
  if (read.ec != std::errc() || read.ptr != port.data() + port.size()) return std::nullopt;
  return number;
}

[[noreturn]] void Fail(const std::string& what) {
  throw std::runtime_error(what);
}

std::string ReadTable(const std::filesystem::path& controller) {
  std::ifstream file(controller / "status");
  if (!file) {
    Fail("There is no virtual USB host controller at " + controller.string() + ": load it with \"modprobe vhci-hcd\".");
  }
  return {std::istreambuf_iterator<char>(file), {}};
}

// The kernel takes the order in one write and answers with errno. False when the port has been taken in the meantime.
bool Write(const std::filesystem::path& attribute, const std::string& order) {
  const base::FileDescriptor file(::open(attribute.c_str(), O_WRONLY | O_CLOEXEC));
  if (!file) {
    Fail("Cannot open " + attribute.string() + " (" + std::strerror(errno) + "): plugging a camera in needs root.");
  }
  if (::write(file.Get(), order.data(), order.size()) == static_cast<ssize_t>(order.size())) return true;
  if (errno == EBUSY) return false;
  Fail("The kernel did not take the virtual camera (" + std::string(std::strerror(errno)) +
       "); its log (dmesg) says why.");
}

}  // namespace

std::optional<unsigned> FreePort(std::string_view table, Speed speed) {
  const std::string_view hub = speed == Speed::kSuper ? "ss" : "hs";
  std::istringstream lines{std::string(table)};
  for (std::string line; std::getline(lines, line);) {
    if (const auto port = PortOfLine(line, hub)) return port;
  }
  return std::nullopt;
}

std::filesystem::path DefaultController() {
  return "/sys/devices/platform/vhci_hcd.0";
}

base::FileDescriptor PlugIntoController(const std::filesystem::path& controller, std::uint32_t device, Speed speed) {
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    Fail("Cannot make a socket pair: " + std::string(std::strerror(errno)) + ".");
  }
  base::FileDescriptor near(ends[0]);
  const base::FileDescriptor far(ends[1]);
  const std::string rest = " " + std::to_string(far.Get()) + " " + std::to_string(device) + " " +
                           std::to_string(static_cast<unsigned>(speed));
  // Another program may take the port after the table was read and before the kernel gets the order.
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const auto port = FreePort(ReadTable(controller), speed);
    if (!port) break;
    if (Write(controller / "attach", std::to_string(*port) + rest)) return near;
  }
  Fail("All ports of the virtual USB host controller are taken: unplug a device first (see \"usbip port\").");
}

}  // namespace vcam::usbip
