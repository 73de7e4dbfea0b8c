// Finds the cameras that are mounted.
#include "apps/mount/Mounts.h"

#include <fstream>
#include <iterator>

#include "apps/files/SafeName.h"

namespace apps {
namespace {

bool IsOctal(std::string_view text) {
  return text.size() == 3 && text.find_first_not_of("01234567") == std::string_view::npos;
}

// The kernel writes blanks and backslashes as \040 and \134.
std::string Unescaped(std::string_view text) {
  std::string out;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '\\' || !IsOctal(text.substr(at + 1, 3))) {
      out += text[at];
      continue;
    }
    out += static_cast<char>((text[at + 1] - '0') * 64 + (text[at + 2] - '0') * 8 + (text[at + 3] - '0'));
    at += 3;
  }
  return out;
}

std::vector<std::string_view> Words(std::string_view line) {
  std::vector<std::string_view> words;
  while (!line.empty()) {
    const std::size_t end = line.find(' ');
    words.push_back(line.substr(0, end));
    line.remove_prefix(end == std::string_view::npos ? line.size() : end + 1);
  }
  return words;
}

}  // namespace

std::string SourceOf(std::string_view serial) {
  if (serial.empty()) return "Kelva";
  std::string source = "Kelva ";
  for (const char c : SafeName(serial)) {
    if (c == ',') {
      source += "%2C";
    } else {
      source += c;
    }
  }
  return source;
}

// "36 35 98:0 /mnt1 /mnt2 rw,noatime master:1 - ext3 /dev/root rw": any number of fields stands before the dash.
std::vector<MountedCamera> MountsIn(std::string_view mountinfo) {
  std::vector<MountedCamera> mounts;
  while (!mountinfo.empty()) {
    const std::size_t end = mountinfo.find('\n');
    const std::vector<std::string_view> words = Words(mountinfo.substr(0, end));
    mountinfo.remove_prefix(end == std::string_view::npos ? mountinfo.size() : end + 1);
    constexpr std::size_t kPath = 4;
    for (std::size_t dash = kPath + 1; dash + 2 < words.size(); ++dash) {
      if (words[dash] != "-") continue;
      if (words[dash + 1] == kMountType) mounts.push_back({Unescaped(words[dash + 2]), Unescaped(words[kPath])});
      break;
    }
  }
  return mounts;
}

std::vector<MountedCamera> Mounts() {
  std::ifstream file("/proc/self/mountinfo");
  const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  return MountsIn(text);
}

}  // namespace apps
