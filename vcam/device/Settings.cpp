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

void Take(const std::string& text, std::string& value) {
  value = Unescape(text);
}

template <typename Number>
void Take(const std::string& text, Number& value) {
  Number parsed{};
  if (std::from_chars(text.data(), text.data() + text.size(), parsed).ec == std::errc()) value = parsed;
}

void Take(const std::string& text, bool& value) {
  int number = value ? 1 : 0;
  Take(text, number);
  value = number != 0;
}

template <typename Value>
std::string TextOf(const Value& value) {
  if constexpr (std::is_same_v<Value, std::string>) {
    return Escape(value);
  } else {
    return std::to_string(value);
  }
}

/// Calls `visit` with the key and the value of each setting, in the order of the file.
template <typename AnySettings, typename Visit>
void VisitAll(AnySettings& settings, Visit visit) {
  visit("wifi.0.ssid", settings.networks[0].ssid);
  visit("wifi.0.passphrase.sha256", settings.networks[0].passphraseSha256);
  visit("wifi.1.ssid", settings.networks[1].ssid);
  visit("wifi.1.passphrase.sha256", settings.networks[1].passphraseSha256);
  visit("wifi.on", settings.wifiOn);
  visit("wifi.auth-type-commands", settings.authTypeCommands);
  visit("manual.commands", settings.manualControlCommands);
  visit("manual.last-control", settings.lastManualControl);
  visit("clock.offset-ms", settings.clockOffsetMs);
}

}  // namespace

std::string Settings::Text() const {
  std::string text;
  VisitAll(*this, [&](const char* key, const auto& value) { text.append(key).append("=" + TextOf(value) + "\n"); });
  return text;
}

Settings Settings::Parse(const std::string& text) {
  const Lines lines = Split(text);
  Settings settings;
  VisitAll(settings, [&](std::string_view key, auto& value) {
    if (const auto found = lines.find(key); found != lines.end()) Take(found->second, value);
  });
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
