#include <poll.h>
#include <sys/eventfd.h>

#include <array>
#include <iostream>
#include <memory>
#include <thread>

#include "vcam/program/EndSignals.h"
#include "vcam/program/Verbs.h"
#include "vcam/usbip/CableFaults.h"
#include "vcam/usbip/Server.h"
#include "vcam/usbip/UsbDoor.h"
#include "vcam/usbip/VhciPort.h"

namespace vcam::program {
namespace {

constexpr std::uint16_t kUsbipPort = 3240;

struct UsbipArguments {
  Options camera;
  std::string storage;
  int type = 3;
  std::string catalogue = "standard";
  std::string speed = "high";
  std::uint16_t port = kUsbipPort;
  bool attach = false;
  std::vector<std::string> faults;
};

/// Offers the camera to `usbip attach` until the process is to end.
int Offer(const usbip::CameraModel& model, const UsbipArguments& arguments, int stop) {
  const auto offer = usbip::OfferOf(model.identity.speed);
  usbip::Server server(offer, model, arguments.port);
  server.onComplaint = [](const std::string& sentence) { std::cerr << "kelva-vcam: " << sentence << "\n"; };
  std::cout << "Offering camera " << arguments.camera.serial << "; plug it in with: usbip --tcp-port " << server.port()
            << " attach -r 127.0.0.1 -b " << offer.busId << std::endl;
  server.Run(stop);
  return kExitDone;
}

/// Plugs the camera into this machine until the process is to end or the kernel lets go of it.
int PlugIn(const usbip::CameraModel& model, const UsbipArguments& arguments, int stop) {
  const std::uint32_t device = usbip::OfferOf(model.identity.speed).DeviceId();
  usbip::UsbCamera camera(model);
  usbip::Session session(usbip::PlugIntoController(usbip::DefaultController(), device, model.identity.speed), device,
                         camera);
  std::cout << "Plugged in camera " << arguments.camera.serial << "." << std::endl;
  const base::FileDescriptor ended(::eventfd(0, EFD_CLOEXEC));
  std::jthread pull([&] {
    std::array<pollfd, 2> waits{pollfd{stop, POLLIN, 0}, {ended.Get(), POLLIN, 0}};
    ::poll(waits.data(), waits.size(), -1);
    session.Pull();
  });
  session.Run();
  ::eventfd_write(ended.Get(), 1);
  std::cout << "Unplugged camera " << arguments.camera.serial << "." << std::endl;
  return kExitDone;
}

int Usbip(UsbipArguments& arguments) {
  const base::FileDescriptor stop = EndSignals();
  arguments.camera.storage = arguments.storage;
  arguments.camera.peripheralType = static_cast<std::uint8_t>(arguments.type);
  arguments.camera.catalogue = CatalogueLayout::ByName(arguments.catalogue).value();
  VirtualCamera camera(arguments.camera);
  usbip::CableFaults cable;
  for (const std::string& fault : arguments.faults) usbip::ArmByText(fault, camera, cable);
  const auto speed = arguments.speed == "super" ? usbip::Speed::kSuper : usbip::Speed::kHigh;
  const auto model = usbip::ModelOf(camera, cable, speed);
  return arguments.attach ? PlugIn(model, arguments, stop.Get()) : Offer(model, arguments, stop.Get());
}

}  // namespace

void AddUsbip(CLI::App& app, Action& chosen) {
  CLI::App* verb = app.add_subcommand("usbip", "Be a USB device that this machine's kernel attaches");
  const auto arguments = std::make_shared<UsbipArguments>();
  verb->add_option("--serial", arguments->camera.serial, "USB serial number")
      ->required()
      ->check(
          CLI::Validator([](std::string& text) { return text.size() > usbip::kMaxStringLength ? "too long" : ""; }, ""))
      ->type_name("S");
  verb->add_option("--storage", arguments->storage, "Folder that is the camera's drive I:")
      ->required()
      ->type_name("DIR");
  verb->add_option("--revision", arguments->camera.revision, "Product revision level; default 1.00")->type_name("R");
  verb->add_option("--type", arguments->type, "SCSI peripheral type: 0 disk, 5 compact disc; default 3")
      ->check(CLI::Range(0, 31))
      ->type_name("N");
  verb->add_option("--catalogue", arguments->catalogue,
                   "Layout of the catalogue: standard, reordered, unknown-fields or wide")
      ->check(CLI::IsMember({"standard", "reordered", "unknown-fields", "wide"}))
      ->type_name("NAME");
  verb->add_option("--speed", arguments->speed, "high (USB 2) or super (USB 3); default high")
      ->check(CLI::IsMember({"high", "super"}))
      ->type_name("SPEED");
  verb->add_option("--port", arguments->port, "Port of loopback to listen on; 0 takes any; default 3240")
      ->type_name("N");
  verb->add_flag("--attach", arguments->attach, "Plug the camera in at once, without the usbip command; needs root");
  verb->add_option("--fault", arguments->faults, "NAME or NAME@N, may be repeated: " + usbip::AllFaultNames())
      ->type_name("FAULT");
  verb->callback([&chosen, arguments] { chosen = [arguments] { return Usbip(*arguments); }; });
}

}  // namespace vcam::program
