// Sources of run loops: a descriptor that becomes readable, or a signal from any thread.

#include "darwin/cf/RunLoopSource.h"

#include <poll.h>

#include <utility>

#include "darwin/cf/RunLoop.h"

namespace darwin::cf {
namespace {

class DescriptorSource final : public RunLoopSource {
 public:
  DescriptorSource(int descriptor, std::function<void()> onReadable)
      : descriptor_(descriptor), onReadable_(std::move(onReadable)) {}

  void AddDescriptors(std::vector<int>& descriptors) const override { descriptors.push_back(descriptor_); }

  bool Perform() override {
    pollfd entry{descriptor_, POLLIN, 0};
    if (::poll(&entry, 1, 0) <= 0) return false;
    onReadable_();
    return true;
  }

 private:
  const int descriptor_;
  const std::function<void()> onReadable_;
};

/// Due when a thread has signalled it. The signal is kept until a loop performs the source.
class SignalledSource final : public RunLoopSource {
 public:
  explicit SignalledSource(const CFRunLoopSourceContext& context) : context_(context) {}

  void AddDescriptors(std::vector<int>&) const override {}
  int TimeoutMs() const override { return signalled_ ? 0 : -1; }
  bool Perform() override {
    if (!signalled_.exchange(false)) return false;
    context_.perform(context_.info);
    return true;
  }
  void Signal() override { signalled_ = true; }

 private:
  const CFRunLoopSourceContext context_;
  std::atomic<bool> signalled_{false};
};

}  // namespace

void RunLoopSource::Invalidate() {
  valid_ = false;
  RunLoop::RemoveEverywhere(*this);
}

CFRunLoopSourceRef MakeDescriptorSource(int descriptor, std::function<void()> onReadable) {
  return ToSourceRef(new DescriptorSource(descriptor, std::move(onReadable)));
}

CFRunLoopSourceRef ToSourceRef(RunLoopSource* source) {
  return reinterpret_cast<CFRunLoopSourceRef>(static_cast<Object*>(source));
}

RunLoopSource& FromSourceRef(CFRunLoopSourceRef ref) {
  return const_cast<RunLoopSource&>(static_cast<const RunLoopSource&>(FromRef(ref)));
}

}  // namespace darwin::cf

using namespace darwin::cf;

extern "C" {

CFRunLoopSourceRef CFRunLoopSourceCreate(CFAllocatorRef, CFIndex, CFRunLoopSourceContext* context) {
  return ToSourceRef(new SignalledSource(*context));
}

void CFRunLoopSourceSignal(CFRunLoopSourceRef source) {
  FromSourceRef(source).Signal();
}

void CFRunLoopSourceInvalidate(CFRunLoopSourceRef source) {
  FromSourceRef(source).Invalidate();
}

Boolean CFRunLoopSourceIsValid(CFRunLoopSourceRef source) {
  return FromSourceRef(source).IsValid();
}

}  // extern "C"
