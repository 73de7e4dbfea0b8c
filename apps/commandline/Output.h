#ifndef KELVA_APPS_COMMANDLINE_OUTPUT_H_
#define KELVA_APPS_COMMANDLINE_OUTPUT_H_

#include <atomic>
#include <string>
#include <string_view>

namespace apps {

/// Thrown when whoever reads standard output has closed it. Not a std::exception, so that no handler takes it for the
/// failure of one item.
struct ReaderGone {};

/// The tool's standard output: results and nothing else. Collects until Flush. Not for use from two threads.
class Output {
 public:
  /// `fd` stays the caller's.
  explicit Output(int fd) : fd_(fd) {}

  void Add(std::string_view text) { pending_ += text; }
  /// Writes what was collected. Throws ReaderGone, and Failure when the disk is full.
  void Flush();
  /// Flush, then writes these bytes at once. Throws as Flush does.
  void Write(std::string_view bytes);
  /// Whether a person sees it.
  bool IsTerminal() const;
  /// True for the first caller, who then gives the document that ends the command. Any thread.
  bool TakeEnd() { return !ended_.exchange(true); }

 private:
  void WriteAll(std::string_view bytes);

  int fd_;
  std::atomic<bool> ended_ = false;
  std::string pending_;
};

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_OUTPUT_H_
