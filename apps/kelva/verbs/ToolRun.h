#ifndef KELVA_APPS_KELVA_VERBS_TOOL_RUN_H_
#define KELVA_APPS_KELVA_VERBS_TOOL_RUN_H_

#include <poll.h>
#include <sys/types.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/FileDescriptor.h"

namespace apps {

/// This program as another process, with other words on its command line. It reads nothing, and its output comes here
/// line by line. Belongs to one thread.
class ToolRun {
 public:
  using Take = std::function<void(std::string_view line)>;

  /// Throws Failure.
  ToolRun(const std::vector<std::string>& words, Take output, Take messages);
  /// Ends it if it still runs, and waits for it.
  ~ToolRun();
  ToolRun(const ToolRun&) = delete;
  ToolRun& operator=(const ToolRun&) = delete;

  /// True until both streams have ended.
  bool IsOpen() const { return output_.pipe || messages_.pipe; }
  /// What poll is to look at: two entries, in one order.
  void AddTo(std::vector<pollfd>& watched) const;
  /// Reads what there is.
  void Read();
  /// Asks it to end, as Ctrl-C does.
  void AskToStop() const;
  /// Waits for its end. The exit status; 128 and the signal for one that was killed.
  int Wait();

 private:
  struct Stream {
    base::FileDescriptor pipe;
    Take take;
    std::string begun = {};  ///< of a line
  };
  static void Read(Stream& stream);

  Stream output_;
  Stream messages_;
  pid_t process_ = 0;
};

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_TOOL_RUN_H_
