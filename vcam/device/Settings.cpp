// Reads and writes the state file.
#include "vcam/device/Settings.h"

#include <charconv>
#include <map>
#include <string_view>

#include "base/Hex.h"
#include "vcam/device/CameraPath.h"

namespace vcam {
namespace {

constexpr std::size_t kMaxStateFile = 64 * 1024;

std::string StatePath() {
  return std::string(kStateFolder) + "/state";
}

std::string Escape(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c > 0x20 && c < 0x7F && c != '%') {
      escaped += c;
    } else {
      escaped += base::PercentHex(c);
    }
  }
  return escaped;
}

std::string Unescape(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned byte = 0;
    if (text[i] == '%' && i + 2 < text.size() &&
        std::from_chars(text.data() + i + 1, text.data() + i + 3, byte, 16).ptr == text.data() + i + 3) {
      plain += static_cast<char>(byte);
      i += 2;
    } else {
      plain += text[i];
    }
  }
  return plain;
}

using Lines = std::map<std::string, std::string, std::less<>>;

Lines Split(const std::string& text) {
  Lines lines;
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    const std::size_t equals = line.find('=');
    if (equals != std::string_view::npos) lines.emplace(line.substr(0, equals), line.substr(equals + 1));
  }
  return lines;
}

void Take(const Lines& lines, std::string_view key, std::string& value) {
  const auto found = lines.find(key);
  if (found != lines.end()) value = Unescape(found->second);
}

template <typename Number>
void TakeNumber(const Lines& lines, std::string_view key, Number& value) {
  const auto found = lines.find(key);
  if (found == lines.end()) return;
  Number parsed{};
  const char* end = found->second.data() + found->second.size();
  if (std::from_chars(found->second.data(), end, parsed).ec == std::errc()) value = parsed;
}

std::string Line(std::string_view key, std::string_view value) {
  return std::string(key) + "=" + Escape(value) + "\n";
}

}  // namespace

std::string Settings::Text() const {
  return Line("wifi.0.ssid", networks[0].ssid) + Line("wifi.0.passphrase.sha256", networks[0].passphraseSha256) +
         Line("wifi.1.ssid", networks[1].ssid) + Line("wifi.1.passphrase.sha256", networks[1].passphraseSha256) +
         Line("wifi.on", wifiOn ? "1" : "0") + Line("wifi.auth-type-commands", std::to_string(authTypeCommands)) +
         Line("manual.commands", std::to_string(manualControlCommands)) +
         Line("manual.last-control", std::to_string(lastManualControl)) +
         Line("clock.offset-ms", std::to_string(clockOffsetMs));
}

Settings Settings::Parse(const std::string& text) {
  const Lines lines = Split(text);
  Settings settings;
  Take(lines, "wifi.0.ssid", settings.networks[0].ssid);
  Take(lines, "wifi.0.passphrase.sha256", settings.networks[0].passphraseSha256);
  Take(lines, "wifi.1.ssid", settings.networks[1].ssid);
  Take(lines, "wifi.1.passphrase.sha256", settings.networks[1].passphraseSha256);
  int on = 1;
  TakeNumber(lines, "wifi.on", on);
  settings.wifiOn = on != 0;
  TakeNumber(lines, "wifi.auth-type-commands", settings.authTypeCommands);
  TakeNumber(lines, "manual.commands", settings.manualControlCommands);
  TakeNumber(lines, "manual.last-control", settings.lastManualControl);
  TakeNumber(lines, "clock.offset-ms", settings.clockOffsetMs);
  return settings;
}

Settings LoadSettings(const Storage& storage) {
  const OpenedFile state = storage.OpenForReading(StatePath());
  if (!state.file) return {};
  std::string text(std::min<std::size_t>(state.stamp.size, kMaxStateFile), '\0');
  const ssize_t count = ::pread(state.file.Get(), text.data(), text.size(), 0);
  text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return Settings::Parse(text);
}

int SaveSettings(const Storage& storage, const Settings& settings) {
  const int error = storage.MakeDirectory(std::string(kStateFolder));
  return error != 0 ? error : storage.Replace(StatePath(), settings.Text(), 0600);
}

}  // namespace vcam
