#ifndef KELVA_APPS_DESKTOP_WORKER_INPUT_H_
#define KELVA_APPS_DESKTOP_WORKER_INPUT_H_

#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "apps/commandline/Stop.h"

namespace apps {

/// One line from the window, in words.
using Command = std::vector<std::string>;

/// What the window says, line by line. Any thread.
class Input {
 public:
  /// Reads standard input on a thread of its own for as long as the process lives. Its end ends the process as SIGTERM does: the
  /// window is gone.
  static std::shared_ptr<Input> OfThisProcess();

  /// Takes bytes as they come. A line that is not encoded is dropped.
  void Add(std::string_view bytes);
  /// The next command. Waits for one until `until`, or until the work is to stop.
  std::optional<Command> Next(std::chrono::steady_clock::time_point until, const Stop& stop);

 private:
  std::mutex mutex_;
  std::condition_variable came_;
  std::string begun_;  // of a line
  std::deque<Command> commands_;
};

}  // namespace apps

#endif  // KELVA_APPS_DESKTOP_WORKER_INPUT_H_
