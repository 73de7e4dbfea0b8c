#ifndef KELVA_DARWIN_REGISTRY_KERNEL_OBJECT_H_
#define KELVA_DARWIN_REGISTRY_KERNEL_OBJECT_H_

namespace darwin {

/// What a handle can stand for: an entry, an iterator, a notification, a connection.
class KernelObject {
 public:
  KernelObject() = default;
  virtual ~KernelObject() = default;
  KernelObject(const KernelObject&) = delete;
  KernelObject& operator=(const KernelObject&) = delete;
};

}  // namespace darwin

#endif  // KELVA_DARWIN_REGISTRY_KERNEL_OBJECT_H_
