// Runs kelva-mount, and hears from it which cameras are folders now.

#include "src/ui/linux/KelvaHelper/opener/MountProgram.h"

#include <gio/gfiledescriptorbased.h>
#include <gio/gio.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <vector>

#include "src/ui/linux/KelvaHelper/opener/GObjects.h"

namespace opener {
namespace {

/// Starts it with both outputs on one pipe: in JSON its errors are events too.
Object<GSubprocess> Start(const std::vector<const char*>& words, Error& error) {
  const int flags = G_SUBPROCESS_FLAGS_STDOUT_PIPE | G_SUBPROCESS_FLAGS_STDERR_MERGE;
  return Object<GSubprocess>(g_subprocess_newv(words.data(), static_cast<GSubprocessFlags>(flags), error.Receive()));
}

/// What a run has said that somebody should know.
class Hearing {
 public:
  explicit Hearing(const std::function<void(const Mounted&)>& onMounted) : onMounted_(onMounted) {}

  void Take(const std::string& line) {
    const auto event = ReadEvent(line);
    if (!event) {
      std::fprintf(stderr, "%s\n", line.c_str());
      reason_ = line;
    } else if (const auto mounted = ReadMounted(*event)) {
      onMounted_(*mounted);
    } else if (const auto message = event->find("message"); message != event->end()) {
      reason_ = message->second;
    }
  }

  /// The last complaint.
  const std::string& Reason() const { return reason_; }

 private:
  const std::function<void(const Mounted&)>& onMounted_;
  std::string reason_;
};

/// Each line, until nobody holds the other end. False when nothing came for `patience`.
bool HearAll(int output, std::chrono::milliseconds patience, Hearing& hearing) {
  std::string text;
  std::array<char, 4096> bytes{};
  for (;;) {
    pollfd ready{output, POLLIN, 0};
    const int count = ::poll(&ready, 1, static_cast<int>(patience.count()));
    if (count == 0) return false;
    const ssize_t came = count < 0 ? -1 : ::read(output, bytes.data(), bytes.size());
    if (came < 0 && errno == EINTR) continue;
    if (came <= 0) break;
    text.append(bytes.data(), static_cast<std::size_t>(came));
    for (std::size_t end = 0; (end = text.find('\n')) != std::string::npos; text.erase(0, end + 1)) {
      hearing.Take(text.substr(0, end));
    }
  }
  if (!text.empty()) hearing.Take(text);
  return true;
}

int OutputOf(GSubprocess* process) {
  return g_file_descriptor_based_get_fd(G_FILE_DESCRIPTOR_BASED(g_subprocess_get_stdout_pipe(process)));
}

/// An empty text when it ended with 0.
std::string OutcomeOf(GSubprocess* process, const std::string& complaint) {
  g_subprocess_wait(process, nullptr, nullptr);
  if (g_subprocess_get_successful(process)) return {};
  if (!complaint.empty()) return complaint;
  if (!g_subprocess_get_if_exited(process)) {
    return "kelva-mount died of signal " + std::to_string(g_subprocess_get_term_sig(process)) + ".";
  }
  return "kelva-mount ended with " + std::to_string(g_subprocess_get_exit_status(process)) + " and said nothing.";
}

}  // namespace

MountProgram MountProgram::Beside(const std::string& opener) {
  return MountProgram(opener.substr(0, opener.find_last_of('/') + 1) + "kelva-mount");
}

bool MountProgram::IsInstalled() const {
  return ::access(path_.c_str(), X_OK) == 0;
}

std::string MountProgram::MountAll(const std::string& virtualBus,
                                   const std::function<void(const Mounted&)>& onMounted) const {
  std::vector<const char*> words{path_.c_str(), "--all", "--json"};
  if (!virtualBus.empty()) words.insert(words.end(), {"--virtual", virtualBus.c_str()});
  words.push_back(nullptr);
  Error error;
  const Object<GSubprocess> process = Start(words, error);
  if (!process) return error.Text();
  Hearing hearing(onMounted);
  if (!HearAll(OutputOf(process.get()), patience_, hearing)) {
    g_subprocess_force_exit(process.get());
    return "kelva-mount said nothing for " + std::to_string(patience_.count() / 1000) +
           " seconds and was ended; unplug the camera and plug it in again.";
  }
  return OutcomeOf(process.get(), hearing.Reason());
}

}  // namespace opener
