// `kelva-vcam usbip`: one virtual camera as a USB device that this machine's kernel attaches.
#include <limits>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "vcam/program/EndSignals.h"
#include "vcam/program/StorageNote.h"
#include "vcam/program/Verbs.h"
#include "vcam/usbip/CableFaults.h"
#include "vcam/usbip/CablePuller.h"
#include "vcam/usbip/CameraModel.h"
#include "vcam/usbip/Server.h"
#include "vcam/usbip/VhciPort.h"

namespace vcam::program {
namespace {

/// The failure of an option whose value is not one of its words.
apps::Failure NotOneOf(const apps::Option& option, const std::string& value) {
  std::string words(option.words);
  for (std::size_t at = words.find(' '); at != std::string::npos; at = words.find(' ', at + 2)) {
    words.replace(at, 1, ", ");
  }
  return {apps::ExitCode::kUsage,
          "--" + std::string(option.name) + " is one of " + words + ", not \"" + apps::Printable(value) + "\"."};
}

constexpr apps::Option kSpeed = {
    "speed", 0, "SPEED", "high (USB 2) or super (USB 3); high if not given.", apps::Offer::kWords, "high super"};

std::uint16_t PortOf(const apps::Invocation& call) {
  constexpr std::uint16_t kUsbipPort = 3240;
  const auto text = call.Value("port");
  constexpr long long kLargest = std::numeric_limits<std::uint16_t>::max();
  return text ? static_cast<std::uint16_t>(apps::ParseNumber(*text, "a port", 0, kLargest)) : kUsbipPort;
}

usbip::Speed SpeedOf(const apps::Invocation& call) {
  const std::string speed = call.Value("speed").value_or("high");
  if (speed == "high") return usbip::Speed::kHigh;
  if (speed == "super") return usbip::Speed::kSuper;
  throw NotOneOf(kSpeed, speed);
}

Options OptionsOf(const apps::Invocation& call) {
  Options options;
  options.serial = *call.Value("serial");
  if (options.serial.size() > usbip::kMaxStringLength) {
    throw apps::Failure(apps::ExitCode::kUsage, "The serial number is too long; a USB device's has at most " +
                                                    std::to_string(usbip::kMaxStringLength) + " characters.");
  }
  options.storage = *call.Value("storage");
  options.keep = call.Has("writable") ? Keep::kInFolder : Keep::kInView;
  options.revision = call.Value("revision").value_or(options.revision);
  options.peripheralType = PeripheralType(call);
  options.forwardOnly = call.Has("forward-only");
  options.hasKeys = !call.Has("no-keys");
  options.opaque = OpaqueSeed(call);
  const std::string name = call.Value("catalogue").value_or("standard");
  const auto layout = CatalogueLayout::ByName(name);
  if (!layout) throw NotOneOf(kCatalogue, name);
  options.catalogue = *layout;
  return options;
}

apps::Json About(const usbip::CameraModel& model) {
  return std::move(apps::Json::Object().Set("serial", model.identity.serial));
}

/// Offers the camera to `usbip attach` until the process is to end.
void Offer(const usbip::CameraModel& model, apps::Context& context, int stop) {
  const auto offer = usbip::OfferOf(model.identity.speed);
  usbip::Server server(offer, model, PortOf(context.call));
  server.onComplaint = [&context](const std::string& sentence) { context.reporter.Note(sentence); };
  const std::string port = std::to_string(server.Port());
  context.Event("offering", About(model).Set("host", "127.0.0.1").Set("port", server.Port()).Set("bus_id", offer.busId),
                "Offering camera " + model.identity.serial + "; plug it in with: usbip --tcp-port " + port +
                    " attach -r 127.0.0.1 -b " + offer.busId + "\n");
  server.Run(stop);
}

/// Plugs the camera into this machine until the process is to end or the kernel lets go of it.
void PlugIn(const usbip::CameraModel& model, apps::Context& context, int stop) {
  const std::uint32_t device = usbip::OfferOf(model.identity.speed).DeviceId();
  usbip::UsbCamera camera(model);
  usbip::Session session(usbip::PlugIntoController(usbip::DefaultController(), device, model.identity.speed), device,
                         camera);
  context.Event("plugged", About(model), "Plugged in camera " + model.identity.serial + ".\n");
  {
    const usbip::CablePuller puller(stop, [&session] { session.Pull(); });
    session.Run();
  }
  context.Event("unplugged", About(model), "Unplugged camera " + model.identity.serial + ".\n");
}

apps::ExitCode Usbip(apps::Context& context) {
  const apps::Invocation& call = context.call;
  const EndSignals signals;
  const usbip::Speed speed = SpeedOf(call);
  VirtualCamera camera(OptionsOf(call));
  usbip::CableFaults cable;
  for (const std::string& fault : call.Values("fault")) usbip::ArmByText(fault, camera, cable);
  if (const std::string note = StorageNote(*call.Value("storage")); !note.empty()) context.reporter.Note(note);
  const auto model = usbip::ModelOf(camera, cable, speed);
  call.Has("attach") ? PlugIn(model, context, signals.Descriptor()) : Offer(model, context, signals.Descriptor());
  context.Result(About(model), "");
  return apps::ExitCode::kDone;
}

constexpr apps::Example kExamples[] = {
    {"PROGRAM usbip --serial K100 --storage ~/card &", "Offer a camera; it says how to plug it in."},
    {"sudo PROGRAM usbip --serial K100 --storage ~/card --attach", "Plug it in without the usbip command."},
    {"PROGRAM usbip --serial K100 --storage ~/card --fault short@3 --fault pull@9",
     "The third command is a byte short; at the ninth the cable is pulled."}};

}  // namespace

std::span<const apps::Verb> UsbipVerbs() {
  static const std::string faults = "NAME or NAME@N, may be repeated: " + usbip::AllFaultNames() + ".";
  static const apps::Option options[] = {
      kNewSerial,
      kStorage,
      kRevision,
      kType,
      kCatalogue,
      kForwardOnly,
      kNoKeys,
      kOpaqueOption,
      kSpeed,
      {"port", 0, "N", "Port of loopback to listen on; 0 takes any; 3240 if not given."},
      {"writable", 0, "", "Keep in the folder what a host writes and deletes; otherwise the folder stays as it is."},
      {"attach", 0, "", "Plug the camera in at once, without the usbip command; needs root."},
      {"fault", 0, "FAULT", faults}};
  static const apps::Verb verbs[] = {
      {"usbip",
       "Be a USB device that this machine's kernel attaches",
       {},
       options,
       "Offers one camera on loopback, and nowhere else, until SIGTERM or Ctrl-C. Serves this user and root only. What "
       "a host writes or deletes lasts until the end, and the storage folder stays as it is, unless --writable is "
       "given. Needs the kernel module vhci-hcd.",
       "serial: its USB serial number; the event \"offering\" also has host, port and bus_id",
       kExamples,
       Usbip}};
  return verbs;
}

}  // namespace vcam::program
