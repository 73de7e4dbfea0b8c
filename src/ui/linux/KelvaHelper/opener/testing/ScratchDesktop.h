#ifndef KELVA_UI_LINUX_KELVA_HELPER_OPENER_TESTING_SCRATCH_DESKTOP_H_
#define KELVA_UI_LINUX_KELVA_HELPER_OPENER_TESTING_SCRATCH_DESKTOP_H_

#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "base/testing/ScratchFolder.h"

namespace opener {

/// For tests: the XDG folders of a user who has installed these applications and no others, and no session bus. GIO reads
/// the folders once and hears of changes later, so that everything is there from the start:
/// "org.example.Found" writes its first argument into Pipe(); "org-example.Nested" lies in a subfolder;
/// "org.example.Viewer" writes what it is to open, and is for the content type "x-content/kelva-test";
/// "org.example.Broken" names a missing program; "org.example.Hidden" is marked as hidden; "org.example.Refused" wants to
/// run in a folder that does not exist, and is for "x-content/kelva-refused".
class ScratchDesktop {
 public:
  static const ScratchDesktop& Get() {
    static const ScratchDesktop desktop;
    return desktop;
  }
  ScratchDesktop(const ScratchDesktop&) = delete;
  ScratchDesktop& operator=(const ScratchDesktop&) = delete;

  /// What the started application writes; opening the pipe waits for it. An application that wrote before and has not yet
  /// closed its end brings an end without a word.
  std::string WordOfTheApplication() const {
    std::string word;
    while (word.empty()) std::ifstream(Pipe()) >> word;
    return word;
  }

 private:
  ScratchDesktop() {
    std::filesystem::create_directories(folder_ / "applications");
    ::setenv("XDG_DATA_HOME", folder_.c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", folder_.c_str(), 1);
    ::setenv("XDG_DATA_DIRS", folder_.c_str(), 1);
    ::setenv("XDG_RUNTIME_DIR", folder_.c_str(), 1);
    // What else this machine has for files would be loaded into the tests.
    ::setenv("GIO_MODULE_DIR", folder_.c_str(), 1);
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
    ::mkfifo(Pipe().c_str(), 0600);
    const std::string script = WriteScript("echo \"$1\" > " + Pipe());
    Install("org.example.Found", script + " word");
    std::filesystem::create_directory(folder_ / "applications" / "org");
    Install("org/example.Nested", script);
    Install("org.example.Viewer", script + " %u");
    Install("org.example.Broken", "/nonexistent/program");
    Install("org.example.Hidden", script, "Hidden=true\n");
    Install("org.example.Refused", script, "Path=/nonexistent/folder\n");
    std::ofstream(folder_ / "mimeapps.list") << "[Default Applications]\n"
                                                "x-content/kelva-test=org.example.Viewer.desktop\n"
                                                "x-content/kelva-refused=org.example.Refused.desktop\n";
  }

  std::string Pipe() const { return folder_ / "pipe"; }

  void Install(const std::string& desktopId, const std::string& command, const std::string& further = "") const {
    std::ofstream(folder_ / "applications" / (desktopId + ".desktop"))
        << "[Desktop Entry]\nType=Application\nName=Stand-in\nExec=" << command << "\n"
        << further;
  }

  std::string WriteScript(const std::string& text) const {
    const std::filesystem::path path = folder_ / "application.sh";
    std::ofstream(path) << "#!/bin/sh\n" << text << "\n";
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
  }

  const base::ScratchFolder scratch_;
  const std::filesystem::path folder_ = scratch_.Path();
};

}  // namespace opener

#endif  // KELVA_UI_LINUX_KELVA_HELPER_OPENER_TESTING_SCRATCH_DESKTOP_H_
