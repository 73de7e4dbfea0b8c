// The first exchange with the `usbip` command, byte by byte.
#include "vcam/usbip/Handshake.h"

#include <algorithm>

#include "vcam/usbip/BigEndian.h"
#include "vcam/usbip/Messages.h"

namespace vcam::usbip {
namespace {

constexpr std::uint16_t kVersion = 0x0111;
constexpr std::uint16_t kAskList = 0x8005;
constexpr std::uint16_t kAskImport = 0x8003;
constexpr std::uint16_t kTellList = 0x0005;
constexpr std::uint16_t kTellImport = 0x0003;
constexpr std::size_t kPathSize = 256;

void AppendField(base::Bytes& bytes, const std::string& text, std::size_t size) {
  const std::size_t end = bytes.size() + size;
  base::AppendText(bytes, text.substr(0, size - 1));
  bytes.resize(end);
}

base::Bytes AnswerHead(std::uint16_t code, Outcome outcome) {
  base::Bytes bytes;
  AppendBig(bytes, kVersion, code, outcome);
  return bytes;
}

void AppendDevice(base::Bytes& bytes, const Offer& offer) {
  AppendField(bytes, "/sys/devices/kelva-vcam/" + offer.busId, kPathSize);
  AppendField(bytes, offer.busId, kBusIdSize);
  AppendBig(bytes, offer.busNumber, offer.deviceNumber, offer.speed, offer.vendor, offer.product, offer.release);
  // Class, subclass and protocol stand in the interface; the configuration in force is 1 of 1, with 1 interface.
  bytes.insert(bytes.end(), {0, 0, 0, 1, 1, 1});
}

bool IsBusIdByte(std::uint8_t byte) {
  return (byte >= '0' && byte <= '9') || byte == '-' || byte == '.' || byte == ':';
}

}  // namespace

Request DecodeRequest(std::span<const std::uint8_t, kRequestSize> head) {
  const auto version = LoadBig<std::uint16_t>(head, 0);
  const auto code = LoadBig<std::uint16_t>(head, 2);
  if (version != kVersion) {
    throw ProtocolError("A USB/IP host speaks another version of the protocol than 1.1.1; it was disconnected.");
  }
  if (code == kAskList) return Request::kListDevices;
  if (code == kAskImport) return Request::kImportDevice;
  throw ProtocolError("A USB/IP host asked the unknown question " + std::to_string(code) + "; it was disconnected.");
}

std::string DecodeBusId(std::span<const std::uint8_t, kBusIdSize> field) {
  const auto end = std::find(field.begin(), field.end(), std::uint8_t{0});
  if (end == field.end() || !std::all_of(field.begin(), end, IsBusIdByte)) {
    throw ProtocolError("A USB/IP host asked for a device whose bus id cannot be one; it was disconnected.");
  }
  return std::string(field.begin(), end);
}

base::Bytes EncodeDeviceList(const Offer& offer) {
  base::Bytes bytes = AnswerHead(kTellList, Outcome::kOk);
  AppendBig(bytes, std::uint32_t{1});
  AppendDevice(bytes, offer);
  // Mass storage, SCSI transparent command set, bulk-only transport; and a byte of padding.
  bytes.insert(bytes.end(), {0x08, 0x06, 0x50, 0});
  return bytes;
}

base::Bytes EncodeImport(Outcome outcome, const Offer& offer) {
  base::Bytes bytes = AnswerHead(kTellImport, outcome);
  if (outcome == Outcome::kOk) AppendDevice(bytes, offer);
  return bytes;
}

}  // namespace vcam::usbip
