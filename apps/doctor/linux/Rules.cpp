// Looks for the installed udev rule.

#include "apps/doctor/linux/Rules.h"

#include <unistd.h>

#include <array>

namespace apps::doctor {
namespace {

// The folders that udev searches, in udev's order.
constexpr std::array kFolders{"/etc/udev/rules.d", "/run/udev/rules.d", "/usr/local/lib/udev/rules.d",
                              "/usr/lib/udev/rules.d", "/lib/udev/rules.d"};
constexpr const char* kFile = "/70-kelva.rules";

}  // namespace

std::string InstalledRules(const std::string& root) {
  for (const char* folder : kFolders) {
    std::string file = root + folder + kFile;
    if (::access(file.c_str(), F_OK) == 0) return file;
  }
  return "";
}

}  // namespace apps::doctor
