#ifndef KELVA_VCAM_PROGRAM_VERBS_H_
#define KELVA_VCAM_PROGRAM_VERBS_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "apps/commandline/Context.h"
#include "apps/commandline/Program.h"
#include "bus/BusConnection.h"

// The table of verbs, one group for each file. Vcam.cpp puts them in the order of the help.

namespace vcam::program {

std::span<const apps::Verb> ServeVerbs();   ///< serve
std::span<const apps::Verb> PlugVerbs();    ///< plug, unplug
std::span<const apps::Verb> StatusVerbs();  ///< status
std::span<const apps::Verb> FaultVerbs();   ///< fault
std::span<const apps::Verb> UsbipVerbs();   ///< usbip; none where the kernel takes no USB device from a program

/// The program: these verbs, then those that explain it, and the options of all.
const apps::Program& Vcam();

/// Options that several verbs take.
inline constexpr apps::Option kBus = {.name = "virtual",
                                      .letter = 0,
                                      .value = "PATH",
                                      .help = "The bus: the path of its socket. --socket means the same.",
                                      .offer = apps::Offer::kFile,
                                      .alias = "socket",
                                      .needed = true};
inline constexpr apps::Option kSerial = {.name = "serial",
                                         .letter = 's',
                                         .value = "SERIAL",
                                         .help = "The camera with this USB serial number.",
                                         .offer = apps::Offer::kSerial};
inline constexpr apps::Option kNewSerial = {
    .name = "serial", .letter = 's', .value = "SERIAL", .help = "The camera's USB serial number.", .needed = true};
inline constexpr apps::Option kStorage = {.name = "storage",
                                          .letter = 0,
                                          .value = "FOLDER",
                                          .help = "The folder that is the camera's drive I:.",
                                          .offer = apps::Offer::kFolder,
                                          .needed = true};
inline constexpr apps::Option kRevision = {"revision", 0, "R", "Product revision level; 1.00 if not given."};
inline constexpr apps::Option kType = {"type", 0, "N",
                                       "SCSI peripheral type, 0 to 31: 0 disk, 3 processor, 5 compact disc; 3 if not "
                                       "given."};
inline constexpr apps::Option kCatalogue = {"catalogue",
                                            0,
                                            "NAME",
                                            "Layout of the catalogue: standard, reordered, unknown-fields or wide.",
                                            apps::Offer::kWords,
                                            "standard reordered unknown-fields wide"};

inline constexpr apps::Option kForwardOnly = {
    "forward-only", 0, "", "Ignore the offset of a read and send the next bytes of the selection, as a stream does."};
inline constexpr apps::Option kNoKeys = {
    "no-keys", 0, "", "Know no SHA-1 keys, so that no file is read before a host asks for it: for large cards."};

inline constexpr apps::Option kOpaqueOption = {"opaque", 0, "SEED",
                                               "Fill what the protocol leaves to cameras with random bytes from this "
                                               "number: clock, battery, information record, and "
                                               "the catalogue's fields 5 to 9."};

/// The number that --opaque gives, if it is given.
std::optional<std::uint32_t> OpaqueSeed(const apps::Invocation& call);

/// The number that --type gives.
std::uint8_t PeripheralType(const apps::Invocation& call);

/// Sends one request to the bus of --virtual and waits for its answer. Throws apps::Failure when the bus refuses.
bus::Frame AskBus(const apps::Invocation& call, bus::Kind kind, const base::Bytes& payload);

}  // namespace vcam::program

#endif  // KELVA_VCAM_PROGRAM_VERBS_H_
