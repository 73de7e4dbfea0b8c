#ifndef KELVA_APPS_COMMANDLINE_GUARD_H_
#define KELVA_APPS_COMMANDLINE_GUARD_H_

#include <array>
#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

namespace apps {

/// Lets long work survive the end of its process. A child process does the work. If the library aborts in the middle of one
/// item, because the camera sent more than it announced, another child goes on without that item. If a child is killed
/// (memory), another one tries the item once more; an item in which two were killed is left out. A child that is killed between two
/// items is replaced twice.
/// Items are named by tokens. What is counted and noted here holds for the whole work, over all processes. Any thread.
class Guard {
 public:
  /// What earlier processes met in an item.
  enum class Fate { kUnknown, kAbort, kKilledTwice };

  /// Runs `work` in a child process and returns its exit status; runs it again in another child as said above. `say` is
  /// given a sentence about a child that was killed. Throws Failure when one was killed before its first item, or too many
  /// were. Signals that end the tool reach the worker; so does the end of this process.
  /// Call it while this process has one thread and TakeOverSignals has been called.
  static int Run(const std::function<int(Guard&)>& work, const std::function<void(const std::string&)>& say);

  /// An item begins; `name` is what a person calls it.
  void Begin(std::string_view token, std::string_view name);
  /// The item is over.
  void End();
  /// An item whose fate is known is left out.
  Fate FateOf(std::string_view token) const;
  /// True for the first call with this token. Whoever reports an item asks first, since a later process meets it again.
  /// False in a process that aborts: another one takes over and finds out itself.
  bool TakeReport(std::string_view token);
  /// Whether TakeReport was called with this token.
  bool WasReported(std::string_view token) const;

  /// Numbers of the whole work, over all its processes; 0 at first. What they count is the work's own affair.
  using Counter = std::atomic<unsigned long long>;
  using Counters = std::array<Counter, 32>;
  Counters& Shared() const;

  /// From the abort handler: true when the abort happened in an item, so that another process will go on.
  /// Async-signal-safe.
  static bool NoteAbort() noexcept;

 private:
  struct Page;
  explicit Guard(Page& page) : page_(page) {}
  static void NoteKill(Page& page, int signal, const std::function<void(const std::string&)>& say);

  Page& page_;
  mutable std::mutex mutex_;  // the notes
};

/// An item for as long as this lives, however its work ends.
class InItem {
 public:
  /// Without a guard it does nothing.
  InItem(Guard* guard, std::string_view token, std::string_view name) : guard_(guard) {
    if (guard_ != nullptr) guard_->Begin(token, name);
  }
  ~InItem() {
    if (guard_ != nullptr) guard_->End();
  }
  InItem(const InItem&) = delete;
  InItem& operator=(const InItem&) = delete;

 private:
  Guard* const guard_;
};

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_GUARD_H_
