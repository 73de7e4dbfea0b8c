// The camera's Wi-Fi settings. An argument that is not accepted returns false, without a transfer or an exception.

#include <optional>

#include "Camera.h"
#include "Command.h"

using kelva::Block;
using kelva::Operation;

namespace {

constexpr const char* kNamePrefix = "kelva.camera.";
constexpr std::size_t kLongestName = 32;
constexpr std::size_t kShortestPassphrase = 9;  // the camera wants one more than the Wi-Fi standard
constexpr std::size_t kLongestPassphrase = 63;

std::optional<std::uint8_t> SubCodeFor(_VscWifiType type, std::uint8_t type0, std::uint8_t type1) {
  switch (type) {
    case kVscWifiType0:
      return type0;
    case kVscWifiType1:
      return type1;
  }
  return std::nullopt;
}

std::optional<std::string> AuthText(_VscWifiAuthType auth) {
  switch (auth) {
    case kVscWifiAuthWpa2:
      return "WPA2";
    case kVscWifiAuthWep:
      return "WEP";
    case kVscWifiAuthNone:
      return "NONE";
  }
  return std::nullopt;
}

/// Sends a setting. Clears the cancel state also for an unknown type, which has no sub-code and sends nothing.
bool SendSetting(Camera& camera, std::optional<std::uint8_t> subCode, const std::string& text) {
  camera.ClearCancel(true);
  return subCode && kelva::SendText(camera, Block(Operation::kAction, *subCode), text.c_str(), text.size(), true);
}

}  // namespace

bool Camera::SetWifiSSID(_VscWifiType type, std::string name) {
  const std::string fullName = kNamePrefix + name;
  if (!IsOpen() || fullName.size() > kLongestName) return false;
  return SendSetting(*this, SubCodeFor(type, kelva::action::kWifiNameType0, kelva::action::kWifiNameType1), fullName);
}

bool Camera::SetWifiPassphrase(_VscWifiType type, std::string passphrase) {
  if (!IsOpen() || passphrase.size() < kShortestPassphrase || passphrase.size() > kLongestPassphrase) return false;
  return SendSetting(*this, SubCodeFor(type, kelva::action::kWifiPassphraseType0, kelva::action::kWifiPassphraseType1),
                     passphrase);
}

bool Camera::SetWifiAuthType(_VscWifiType type, _VscWifiAuthType auth) {
  if (!IsOpen() || type != kVscWifiType1) return false;
  std::optional<std::string> text = AuthText(auth);
  if (!text) return false;
  ClearCancel(true);
  // A size and a buffer, but no data phase: the camera sees the command, and the text does not leave the host.
  int size = static_cast<int>(text->size()) + 1;
  return Transfer(Block(Operation::kAction, kelva::action::kWifiAuthType), kelva::kNoData, size, text->data(), true);
}
