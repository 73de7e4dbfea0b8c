// What a trace may show of the bytes that travel.
#include "apps/trace/Discretion.h"

#include <algorithm>

#include "src/wifi/VscRegister.h"

namespace apps {
namespace {

using kelva::Operation;

constexpr Disclosure kOpen{Shown::kBytes, Personal::kNothing};
constexpr Disclosure kSummed{Shown::kSum, Personal::kNothing};
constexpr Disclosure kSecret{Shown::kNothing, Personal::kNothing};

Disclosure ForAction(std::uint8_t subCode) {
  switch (subCode) {
    case kelva::action::kWifiNameType0:
    case kelva::action::kWifiNameType1:
      return {Shown::kBytes, Personal::kNetworkName};
    // A person may type anything into a monitor, a passphrase too.
    case kelva::action::kMonitorSingleChar:
    case kelva::action::kMonitorLine:
    case kelva::action::kWifiPassphraseType0:
    case kelva::action::kWifiPassphraseType1:
      return kSecret;
    case kelva::action::kDeleteFile:
    case kelva::action::kSetTime:
    case kelva::action::kDeletePicture:
    case kelva::action::kDeleteBatch:
      return kOpen;
    default:
      return kSummed;
  }
}

Disclosure ForQuery(std::uint8_t subCode) {
  if (subCode == kelva::query::kConsoleLog) return {Shown::kHead, Personal::kNothing};
  return subCode <= kelva::query::kManualControls ? kOpen : kSummed;
}

Disclosure ForSelected(std::optional<std::uint8_t> selected) {
  if (selected == kelva::select::kInformation) return {Shown::kBytes, Personal::kInformation};
  const bool isList = selected == kelva::select::kCatalogue || selected == kelva::select::kDirectory;
  return isList ? kOpen : kSummed;
}

char StandIn(char c) {
  if (c >= 'A' && c <= 'Z') return 'A';
  if (c >= 'a' && c <= 'z') return 'a';
  if (c >= '0' && c <= '9') return '0';
  return static_cast<unsigned char>(c) < 0x80 ? c : 'a';  // letters of other alphabets
}

}  // namespace

Disclosure Discretion::Begin(const _VscCdb& block) {
  const std::uint8_t subCode = block.bytes[kelva::at::kSubCode];
  switch (static_cast<Operation>(block.bytes[kelva::at::kOperation])) {
    case Operation::kAction:
      return ForAction(subCode);
    case Operation::kSelect:
      selected_.reset();
      return kOpen;
    case Operation::kReadChunk:
      return subCode == kelva::read_chunk::kSelected ? ForSelected(selected_) : kSummed;
    case Operation::kQuery:
      return ForQuery(subCode);
    default:
      return kSummed;
  }
}

void Discretion::Done(const _VscCdb& block) {
  const auto operation = static_cast<Operation>(block.bytes[kelva::at::kOperation]);
  if (operation == Operation::kSelect) selected_ = block.bytes[kelva::at::kSubCode];
}

std::string WithStandIns(std::string bytes, Personal personal, const std::string& serial) {
  if (personal != Personal::kNothing) {
    std::transform(bytes.begin(), bytes.end(), bytes.begin(), StandIn);
    return bytes;
  }
  if (serial.empty()) return bytes;
  for (std::size_t at = bytes.find(serial); at != std::string::npos; at = bytes.find(serial, at + serial.size())) {
    bytes.replace(at, serial.size(), serial.size(), '*');
  }
  return bytes;
}

}  // namespace apps
