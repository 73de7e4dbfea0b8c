#ifndef KELVA_DARWIN_CONFORMANCE_MACHINE_H_
#define KELVA_DARWIN_CONFORMANCE_MACHINE_H_

#include <IOKit/IOKitLib.h>

#include <cstdint>
#include <memory>
#include <string>

// What the suite needs beyond the frameworks' own calls: someone who plugs and unplugs. The tests include this header and
// the frameworks' and nothing else, so that the same files run over any registry behind those calls.

namespace conformance {

/// A camera as a test wants it plugged in.
struct Camera {
  std::string serial = "K1";
  std::string vendor = "Kelva";
  std::string revision = "1.00";
  unsigned peripheralType = 3;  ///< 0: served by the "_ms" driver
  kern_return_t refusal = 0;    ///< what its driver answers to an open; 0: it opens
};

// What the driver of such a camera does with the selectors of its user client.
inline constexpr std::uint32_t kAccept = 0;    ///< scalar: succeeds
inline constexpr std::uint32_t kRefuse = 1;    ///< scalar: kIOReturnNotReady
inline constexpr std::uint32_t kReverse = 2;   ///< struct: gives the input back in reverse
inline constexpr std::uint32_t kScribble = 3;  ///< struct: writes to its output, then fails with kIOReturnNotReady
inline constexpr std::uint32_t kBoast = 4;     ///< struct: claims to have produced more than was asked for

/// The machine that the suite runs on.
class Machine {
 public:
  virtual ~Machine() = default;
  /// Plugs a camera in; the result names it for the other operations.
  virtual int Plug(const Camera& camera = {}) = 0;
  virtual void Unplug(int camera) = 0;
  /// The camera's driver sends a message to everyone interested in its service.
  virtual void Announce(int camera, std::uint32_t messageType) = 0;
  /// Names what this process has obtained since the machine was made and still holds; empty when nothing is left.
  virtual std::string StillHeld() const = 0;
};

std::unique_ptr<Machine> MakeMachine();

/// A dictionary that finds the services of the cameras that are plugged in here, and no other service of the machine. The
/// caller's, as IOServiceMatching gives it.
CFMutableDictionaryRef MatchingCameras();

/// The serial number with which the camera of a service was plugged in, also when it has gone; "(none)" for anything else.
std::string SerialOf(io_service_t service);

}  // namespace conformance

#endif  // KELVA_DARWIN_CONFORMANCE_MACHINE_H_
