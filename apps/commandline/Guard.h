#ifndef KELVA_APPS_COMMANDLINE_GUARD_H_
#define KELVA_APPS_COMMANDLINE_GUARD_H_

#include <functional>
#include <string_view>

namespace apps {

/// Lets long work survive an abort. A child process does the work. If the library aborts in the middle of one item,
/// because the camera sent more than it announced, another child goes on without that item.
/// Items are named by short tokens. The counters are the whole work's, over all processes.
class Guard {
 public:
  /// Runs `work` in a child process and returns its exit status. When `work` aborts in an item, runs it again in
  /// another child, without that item. Signals that end the tool reach the worker; so does the end of this process.
  /// Call it while this process has one thread and TakeOverSignals has been called.
  static int Run(const std::function<int(Guard&)>& work);

  /// An item begins. Tokens longer than 79 bytes are cut.
  void Begin(std::string_view token);
  /// The item is over.
  void End();
  /// Whether an earlier process aborted in this item.
  bool IsBad(std::string_view token) const;

  /// How many files the whole work will store, as far as that is known now.
  void Expect(unsigned long long files);
  unsigned long long Expected() const;
  void Count(unsigned long long files, unsigned long long bytes);
  unsigned long long Files() const;
  unsigned long long Bytes() const;

  /// From the abort handler: true when the abort happened in an item, so that another process will go on.
  /// Async-signal-safe.
  static bool NoteAbort() noexcept;

 private:
  struct Page;
  explicit Guard(Page& page) : page_(page) {}
  Page& page_;
};

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_GUARD_H_
