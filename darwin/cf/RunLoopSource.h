#ifndef KELVA_DARWIN_CF_RUN_LOOP_SOURCE_H_
#define KELVA_DARWIN_CF_RUN_LOOP_SOURCE_H_

#include <atomic>
#include <functional>
#include <vector>

#include "darwin/cf/Object.h"

namespace darwin::cf {

/// What a run loop waits for: descriptors, or a moment. Made by the rooms of this substitute, and by programs of this
/// system that wait for more than cameras.
class RunLoopSource : public Object {
 public:
  RunLoopSource() : Object(Type::kRunLoopSource) {}
  /// The descriptors whose readability wakes the loop; asked before each wait.
  virtual void AddDescriptors(std::vector<int>& descriptors) const = 0;
  /// Milliseconds until Perform wants to be called although nothing is readable; -1 for never. Asked before each wait.
  virtual int TimeoutMs() const { return -1; }
  /// Does what is due, without blocking. True when something was handled. Not called once the source is invalid.
  virtual bool Perform() = 0;
  /// Marks the source as due, as CFRunLoopSourceSignal does. Any thread; sources that wait for descriptors ignore it.
  virtual void Signal() {}

  bool IsValid() const { return valid_; }
  /// Takes the source out of every run loop, for good. Any thread; a Perform in progress on another thread goes on.
  void Invalidate();

 private:
  std::atomic<bool> valid_{true};
};

/// A source that calls `onReadable` while `descriptor` is readable. The descriptor stays the caller's and must be open
/// until the source is invalid. One reference for the caller.
CFRunLoopSourceRef MakeDescriptorSource(int descriptor, std::function<void()> onReadable);

/// The reference to a source.
CFRunLoopSourceRef ToSourceRef(RunLoopSource* source);

/// The source behind a reference; stops the process on null, as the framework does.
RunLoopSource& FromSourceRef(CFRunLoopSourceRef ref);

}  // namespace darwin::cf

#endif  // KELVA_DARWIN_CF_RUN_LOOP_SOURCE_H_
