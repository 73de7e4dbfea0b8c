#ifndef KELVA_TESTS_UMOCKDEV_MOCK_MACHINE_H_
#define KELVA_TESTS_UMOCKDEV_MOCK_MACHINE_H_

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/umockdev/SgDoor.h"

namespace mock {

/// How far the kernel has got with a device.
enum class Stage { kUsb, kDriver, kUnit, kNode };

/// A SCSI unit behind USB, as the kernel would show it.
struct Unit {
  std::string serial = "SN1";
  std::string vendor = "Kelva";
  std::string product = "Camera";
  std::string revision = "1.00";
  int peripheralType = 3;
  /// Hubs between the root hub and the device.
  int hubs = 0;
  /// The port, and with it the place in sysfs; also the number of the node, as after plugging in one after another.
  int port = 0;
  Stage upTo = Stage::kNode;
  /// The unit has a block device as well, as one of the disc type has. A machine shows it at one port once: the testbed
  /// keeps a link to each block device for good.
  bool disc = false;
};

/// A machine whose sysfs, nodes and udev events are made up: /sys and /dev of this process and of its children are a
/// testbed's. Needs neither root nor a kernel with USB.
class MockMachine {
 public:
  MockMachine();
  ~MockMachine();
  MockMachine(const MockMachine&) = delete;
  MockMachine& operator=(const MockMachine&) = delete;

  /// Shows the unit in sysfs, makes its node and sends the events, parents first.
  void Plug(const Unit& unit);
  /// Sends the events, children first, and takes the unit away.
  void Unplug(int port);
  /// As above, in the middle of a command to the unit: the node goes on answering those who have it open.
  void Vanish(int port);
  /// Sends a "change" event for the unit's node.
  void Change(int port);
  /// Gives or takes this user's right to the unit's node. Works for root too, once it has given up its override.
  void SetUsable(int port, bool usable);
  /// Lets a camera answer the commands that are sent to the unit's node.
  void Attach(int port, std::shared_ptr<SgDoor> door);

  /// "/dev/sgN" of a port, and the device path of its generic node.
  static std::string NodeOf(int port);
  std::string PathOf(int port) const;
  /// The serials of the units that are plugged in, sorted.
  std::vector<std::string> Serials() const;

 private:
  struct Plugged {
    Unit unit;
    std::vector<std::string> paths;  // parents first
  };

  using AddDevice = std::function<void(const std::string& step, const std::string& text)>;

  std::string Describe(const Unit& unit, Plugged& plugged);
  std::string DescribeDisc(const Unit& unit, const std::string& unitPath, Plugged& plugged);
  std::string DescribeUsb(const Unit& unit, const AddDevice& device);
  void Add(const std::string& description);
  void Withdraw(Plugged& plugged);

  UMockdevTestbed* testbed_;
  std::map<int, Plugged> plugged_;
  std::map<int, std::shared_ptr<SgDoor>> doors_;
  int deviceNumber_ = 1;
};

/// Gives up root's right to use every file, so that permissions mean something to this process. Nothing for other users.
void GiveUpFileOverride();

}  // namespace mock

#endif  // KELVA_TESTS_UMOCKDEV_MOCK_MACHINE_H_
