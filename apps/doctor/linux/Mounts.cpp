// The cameras that are mounted as folders, and what the doctor says of them.
#include "apps/doctor/linux/Mounts.h"

#include <sys/vfs.h>

#include <cerrno>
#include <chrono>
#include <fstream>
#include <future>
#include <iterator>
#include <memory>
#include <thread>

namespace apps::doctor {
namespace {

constexpr std::string_view kMountType = "fuse.kelva";

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

// For a shell.
std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? "'\\''" : std::string(1, c);
  return quoted + "'";
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

// A program that is stopped does not answer either, and its mount is not left over. The thread then ends with the process.
bool IsLeftOver(const MountedCamera& mount) {
  constexpr std::chrono::milliseconds kPatience{500};
  auto asked = std::make_shared<std::promise<bool>>();
  std::future<bool> answer = asked->get_future();
  std::thread([asked, path = mount.path] {
    struct statfs status {};
    asked->set_value(::statfs(path.c_str(), &status) != 0 && errno == ENOTCONN);
  }).detach();
  return answer.wait_for(kPatience) == std::future_status::ready && answer.get();
}

std::vector<Finding> FindingsAbout(const std::vector<MountedCamera>& mounts,
                                   const std::function<bool(const MountedCamera&)>& isLeftOver) {
  std::vector<Finding> findings;
  for (const MountedCamera& mount : mounts) {
    constexpr std::string_view kName = "Kelva ";
    const std::string camera = mount.source.substr(0, mount.source.find(kOfBus));
    const std::string serial = camera.starts_with(kName) ? camera.substr(kName.size()) : "";
    const std::string whose = serial.empty() ? "A camera" : "Camera " + serial;
    if (isLeftOver(mount)) {
      findings.push_back({Condition::kLeftMount, serial,
                          whose + " was mounted on " + mount.path + " by a program that is not there any more.",
                          "fusermount3 -uz " + Quoted(mount.path), ""});
    } else {
      findings.push_back({Condition::kMounted, serial, whose + " is mounted on " + mount.path + ".", "", ""});
    }
  }
  return findings;
}

}  // namespace apps::doctor
