#ifndef KELVA_APPS_COMMANDLINE_SO_FAR_H_
#define KELVA_APPS_COMMANDLINE_SO_FAR_H_

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "apps/commandline/Json.h"

namespace apps {

/// What a command has done so far, for its message and its result when a signal or the time-out ends it. Any thread.
class SoFar {
 public:
  struct Done {
    std::string words;  ///< "985 of 3203 files stored; the same command goes on"
    Json members;       ///< those of the result
  };

  /// `done` may be called by another thread until the program ends, while the command still runs or after it returned. It
  /// waits for nothing. Returns what was told before, empty without.
  std::function<Done()> Tell(std::function<Done()> done) {
    const std::scoped_lock lock(mutex_);
    return std::exchange(done_, std::move(done));
  }
  /// Nothing when the command did not tell.
  std::optional<Done> Ask() const {
    const std::scoped_lock lock(mutex_);
    return done_ ? std::optional(done_()) : std::nullopt;
  }

 private:
  mutable std::mutex mutex_;
  std::function<Done()> done_;
};

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_SO_FAR_H_
