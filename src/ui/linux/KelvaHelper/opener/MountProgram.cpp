// Runs kelva-mount, and hears from it which cameras are folders now.

#include "src/ui/linux/KelvaHelper/opener/MountProgram.h"

#include <gio/gio.h>
#include <unistd.h>

#include <cstdio>
#include <vector>

#include "src/ui/linux/KelvaHelper/opener/GObjects.h"

namespace opener {
namespace {

struct FreeMemory {
  void operator()(char* text) const { g_free(text); }
};
using Text = std::unique_ptr<char, FreeMemory>;

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

void HearAll(GSubprocess* process, Hearing& hearing) {
  const Object<GDataInputStream> lines(g_data_input_stream_new(g_subprocess_get_stdout_pipe(process)));
  while (const Text line{g_data_input_stream_read_line(lines.get(), nullptr, nullptr, nullptr)}) {
    hearing.Take(line.get());
  }
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
  HearAll(process.get(), hearing);
  return OutcomeOf(process.get(), hearing.Reason());
}

}  // namespace opener
