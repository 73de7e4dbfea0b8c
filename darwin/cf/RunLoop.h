#ifndef KELVA_DARWIN_CF_RUN_LOOP_H_
#define KELVA_DARWIN_CF_RUN_LOOP_H_

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "base/WakeUp.h"
#include "darwin/cf/Object.h"
#include "darwin/cf/RunLoopSource.h"

namespace darwin::cf {

/// A reference to a source that is kept while it is in a loop or performs.
class SourceRef {
 public:
  explicit SourceRef(RunLoopSource& source) : source_(&source) { source_->Retain(); }
  SourceRef(const SourceRef& other) : SourceRef(*other.source_) {}
  SourceRef(SourceRef&& other) noexcept : source_(std::exchange(other.source_, nullptr)) {}
  SourceRef& operator=(SourceRef other) noexcept {
    std::swap(source_, other.source_);
    return *this;
  }
  ~SourceRef() {
    if (source_ != nullptr) source_->Release();
  }
  RunLoopSource* operator->() const { return source_; }
  RunLoopSource* Get() const { return source_; }

 private:
  RunLoopSource* source_;
};

/// One descriptor that stands for all that a run loop waits for.
class LoopWatch {
 public:
  virtual ~LoopWatch() = default;
  /// Readable when one of the loop's descriptors is readable, or its deadline has come.
  virtual int Descriptor() const = 0;
  /// Replaces the loop's descriptors and its deadline; timeoutMs -1 means no deadline.
  virtual void Update(const std::vector<int>& descriptors, int timeoutMs) = 0;
};

/// One thread's run loop over poll(2). Runs only inside CFRunLoopRun*(); sleeps until a source is ready or a deadline
/// comes. Sources may be added, and the loop stopped, from any thread.
class RunLoop final : public Object {
 public:
  /// The calling thread's loop, made on first use and destroyed with the thread.
  static RunLoop& Current();

  RunLoop();

  ~RunLoop() override;

  /// Adds and retains the source, unless it is invalid or the mode has it already.
  void Add(RunLoopSource& source, const std::string& mode);
  /// Removes and releases the source, if the mode has it.
  void Remove(const RunLoopSource& source, const std::string& mode);
  bool Contains(const RunLoopSource& source, const std::string& mode);
  /// Takes the source out of every mode of every thread's loop.
  static void RemoveEverywhere(const RunLoopSource& source);
  /// Runs the sources of a mode as CFRunLoopRunInMode does.
  CFRunLoopRunResult Run(const std::string& mode, CFTimeInterval seconds, bool returnAfterSourceHandled);
  /// Ends the innermost run in progress, if there is one.
  void Stop();
  /// Makes a sleeping run look at its sources again. Kept for the next run when none is in progress.
  void WakeUpNow() { wakeUp_.Signal(); }

  /// The descriptor of a watch that the loop keeps up to date with its default mode. `make` is called once.
  int Watch(std::unique_ptr<LoopWatch> (*make)());

 private:
  struct InProgress;
  struct Member {
    std::string mode;
    SourceRef source;
  };

  bool Has(const RunLoopSource& source, const std::string& mode) const;
  template <class Predicate>
  void RemoveIf(Predicate predicate);
  std::vector<SourceRef> SourcesOf(const std::string& mode);
  void Wait(const std::vector<SourceRef>& sources, int timeoutMs);
  void UpdateWatch();

  std::mutex mutex_;  // guards members_ and running_
  std::vector<Member> members_;
  InProgress* running_ = nullptr;
  base::WakeUp wakeUp_;
  std::unique_ptr<LoopWatch> watch_;
};

}  // namespace darwin::cf

#endif  // KELVA_DARWIN_CF_RUN_LOOP_H_
