// kelva-vcam as the command line's machinery sees it, and what its verbs share.
#include <limits>
#include <vector>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "vcam/program/Verbs.h"

namespace vcam::program {
namespace {

using apps::ExitCode;

constexpr apps::Option kOptions[] = {apps::kJsonOption, apps::kQuietOption, apps::kHelpOption};

constexpr apps::ExitCodeRow kCodes[] = {
    {ExitCode::kDone, "done", "The work is done."},
    {ExitCode::kFailed, "failed", "It failed; the message says why."},
    {ExitCode::kUsage, "usage", "The command line cannot be understood."},
    {ExitCode::kNoCamera, "no-camera", "No camera with this serial number is plugged in."},
};

// One line is one paragraph.
constexpr std::string_view kDescription =
    R"(kelva-vcam is a Kelva camera without hardware. A folder of yours is its drive; it answers every command, keeps its state and goes wrong on request.

Serve a bus, plug cameras into it, and give the bus's path to other programs (kelva --virtual PATH). On Linux usbip offers one camera as a USB device that this machine's kernel attaches.

An error is one sentence on standard error. With --json the result is one JSON document that carries the number of its schema.)";

std::span<const apps::Verb> AllVerbs() {
  static const std::vector<apps::Verb> all = [] {
    std::vector<apps::Verb> verbs;
    for (const auto& group :
         {ServeVerbs(), PlugVerbs(), StatusVerbs(), FaultVerbs(), UsbipVerbs(), apps::HelpVerbs()}) {
      verbs.insert(verbs.end(), group.begin(), group.end());
    }
    return verbs;
  }();
  return all;
}

std::vector<std::string> SerialsOnBus(const apps::Invocation& call) {
  std::vector<std::string> serials;
  const auto list = bus::Decode<std::vector<bus::CameraStatus>>(AskBus(call, bus::Kind::kStatus, {}).payload);
  if (list) {
    for (const bus::CameraStatus& camera : *list) serials.push_back(camera.serial);
  }
  return serials;
}

}  // namespace

const apps::Program& Vcam() {
  static const apps::Program program = {
      .name = "kelva-vcam",
      .version = KELVA_VERSION,
      .summary = "Virtual Kelva cameras: a bus of them, and what happens to them",
      .description = kDescription,
      .verbs = AllVerbs(),
      .options = kOptions,
      .exitCodes = kCodes,
      .serials = SerialsOnBus,
  };
  return program;
}

std::uint8_t PeripheralType(const apps::Invocation& call) {
  constexpr long long kLargest = 31;
  const auto text = call.Value("type");
  return static_cast<std::uint8_t>(text ? apps::ParseNumber(*text, "a SCSI peripheral type", 0, kLargest) : 3);
}

std::optional<std::uint32_t> OpaqueSeed(const apps::Invocation& call) {
  constexpr long long kLargest = std::numeric_limits<std::uint32_t>::max();
  const auto text = call.Value("opaque");
  if (!text) return std::nullopt;
  return static_cast<std::uint32_t>(apps::ParseNumber(*text, "a seed", 0, kLargest));
}

bus::Frame AskBus(const apps::Invocation& call, bus::Kind kind, const base::Bytes& payload) {
  try {
    return bus::BusConnection(call.Value("virtual").value_or("")).Request(kind, payload);
  } catch (const bus::BusRefusal& refusal) {
    const bool noCamera = refusal.code == bus::ErrorCode::kNoSuchCamera;
    throw apps::Failure(noCamera ? ExitCode::kNoCamera : ExitCode::kFailed, apps::Printable(refusal.what()));
  }
}

}  // namespace vcam::program
