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
