// Paths on the camera: as people type them, as the camera wants them, and whether they exist.

#include "apps/camera/CameraPath.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdint>

#include "apps/camera/FolderListing.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "base/Ascii.h"

namespace apps {
namespace {

constexpr std::string_view kDrive = "I:";

bool HasDrive(std::string_view path) {
  return path.size() >= 2 && std::isalpha(static_cast<unsigned char>(path[0])) != 0 && path[1] == ':' &&
         (path.size() == 2 || path[2] == '\\');
}

void AppendUtf8(std::string& out, std::uint32_t c) {
  const auto byte = [&out](std::uint32_t value) { out += static_cast<char>(value); };
  if (c >= 0x10000) {
    byte(0xF0 | (c >> 18));
    byte(0x80 | ((c >> 12) & 0x3F));
  } else if (c >= 0x800) {
    byte(0xE0 | (c >> 12));
  } else {
    return byte(0xC0 | (c >> 6)), byte(0x80 | (c & 0x3F));
  }
  if (c >= 0x10000 || c >= 0x800) byte(0x80 | ((c >> 6) & 0x3F));
  byte(0x80 | (c & 0x3F));
}

// The digits of a hexadecimal number in `text`; nothing when they are none, or too many for a character.
std::optional<std::uint32_t> HexNumber(std::string_view text) {
  std::uint32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
  if (error != std::errc() || end != text.data() + text.size() || value > 0x10FFFF) return std::nullopt;
  return value;
}

// Takes what ShownPath wrote for one byte or character from the start of `text`. False, with nothing taken, when there is no
// such thing: a backslash then separates.
bool TakeEscape(std::string_view& text, std::string& out) {
  std::string bytes;
  std::size_t length = 4;
  if (text.starts_with("\\x") && text.size() >= length) {
    if (const auto value = HexNumber(text.substr(2, 2)); value && *value != 0) bytes = static_cast<char>(*value);
  } else if (text.starts_with("\\u{") && text.find('}') != std::string_view::npos) {
    length = text.find('}') + 1;
    if (const auto value = HexNumber(text.substr(3, length - 4)); value && *value >= 0x80) AppendUtf8(bytes, *value);
  }
  // A byte that is shown as it is was typed as it is: "I:/a\xfd" may name a folder "xfd", but "\x41" always does.
  if (bytes.empty() || (bytes != "/" && Printable(bytes) == bytes)) return false;
  out += bytes;
  text.remove_prefix(length);
  return true;
}

std::string WithBackslashes(std::string_view typed) {
  const bool shown = typed.find('/') != std::string_view::npos;
  std::string path;
  while (!typed.empty()) {
    if (shown && typed[0] == '\\' && TakeEscape(typed, path)) continue;
    path += typed[0] == '/' ? '\\' : typed[0];
    typed.remove_prefix(1);
  }
  return path;
}

}  // namespace

std::string ToCameraPath(std::string_view typed) {
  std::string path = WithBackslashes(typed);
  if (!path.empty() && !HasDrive(path) && path.find(':') == std::string::npos) {
    path = std::string(kDrive) + (path[0] == '\\' ? "" : "\\") + path;
  }
  while (path.size() > 2 && path.back() == '\\') path.pop_back();
  if (!HasDrive(path)) {
    throw Failure(ExitCode::kUsage,
                  "\"" + Printable(typed) + "\" is no path on a camera; one looks like I:/DCIM/100ABCDE/IMG_0001.JPG.");
  }
  return path;
}

std::string ShownPath(std::string_view cameraPath) {
  std::string path;
  for (const char c : cameraPath) {
    if (c == '/') {
      path += "\\x2f";
    } else {
      path += c == '\\' ? '/' : c;
    }
  }
  return ShellWord(path);
}

SplitPath Split(std::string_view cameraPath) {
  const std::size_t slash = cameraPath.rfind('\\');
  if (slash == std::string_view::npos) return {std::string(cameraPath), ""};
  return {std::string(cameraPath.substr(0, slash)), std::string(cameraPath.substr(slash + 1))};
}

bool SameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return base::Lower(x) == base::Lower(y); });
}

std::optional<CameraDirent> FindEntry(Camera& camera, std::string_view cameraPath) {
  return KnownListings(camera).Find(cameraPath);
}

std::string RequireFolder(Camera& camera, std::string_view folder) {
  const SplitPath path = Split(folder);
  if (path.name.empty()) return path.folder;  // the drive itself
  const std::string above = RequireFolder(camera, path.folder) + "\\";
  const auto entry = FindEntry(camera, above + path.name);
  if (entry && (entry->attributes & kelva::kAttributeDirectory) != 0) return above + entry->name;
  throw Failure(ExitCode::kFailed, "There is no folder " + ShownPath(folder) + " on the camera; `kelva ls " +
                                       ShownPath(path.folder) + "` shows what is there.");
}

bool IsNamed(const CameraDirent& entry) {
  return (entry.attributes & kelva::kAttributeVolumeLabel) == 0 && entry.name != "." && entry.name != "..";
}

unsigned long long SizeOf(const CameraDirent& entry) {
  return static_cast<std::uint32_t>(entry.size);
}

}  // namespace apps
