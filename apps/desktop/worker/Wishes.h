#ifndef KELVA_APPS_DESKTOP_WORKER_WISHES_H_
#define KELVA_APPS_DESKTOP_WORKER_WISHES_H_

#include <cstdio>
#include <memory>
#include <vector>

#include "apps/desktop/worker/Input.h"

namespace apps {

/// The window's last wishes, kept for the process that follows one that aborted (Guard): what that one had read from the
/// window, nobody says again. Belongs to one thread.
class Wishes {
 public:
  /// Made before the first of those processes is forked; they share what is kept.
  Wishes() : file_(std::tmpfile(), &std::fclose) {}
  /// Those of this program.
  static Wishes& OfThisProgram();

  /// Keeps a command in the place of the last one of its name. Without a file nothing is kept.
  void Keep(const Command& command);
  /// What was kept, by this process or by those before.
  std::vector<Command> Kept() const;

 private:
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
};

}  // namespace apps

#endif  // KELVA_APPS_DESKTOP_WORKER_WISHES_H_
