#ifndef KELVA_DARWIN_CF_OBJECT_H_
#define KELVA_DARWIN_CF_OBJECT_H_

#include <CoreFoundation/CoreFoundation.h>

#include <atomic>
#include <cstddef>

namespace darwin::cf {

/// The type ids that CFGetTypeID gives. Objects of different types are never equal.
enum class Type : CFTypeID { kString = 1, kDictionary, kNumber, kBoolean, kRunLoop, kRunLoopSource };

/// Whether an object counts as live in the accounting. Constants are made once and never given back.
enum class Lifetime { kCounted, kImmortal };

/// What a CFTypeRef points at: a counted reference, a type, equality and a hash.
class Object {
 public:
  explicit Object(Type type, Lifetime lifetime = Lifetime::kCounted);
  virtual ~Object();
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  Type GetType() const { return type_; }
  void Retain() const;
  /// Destroys the object with its last reference.
  void Release() const;
  CFIndex RetainCount() const { return references_.load(std::memory_order_relaxed); }

  /// `other` has the same type.
  virtual bool Equals(const Object& other) const { return this == &other; }
  virtual CFHashCode Hash() const { return reinterpret_cast<CFHashCode>(this); }

  /// Counted objects alive in this process.
  static std::size_t LiveCount();

 private:
  const Type type_;
  const Lifetime lifetime_;
  mutable std::atomic<CFIndex> references_{1};
};

/// The object behind a reference. Stops the process on null, as the framework does.
const Object& FromRef(CFTypeRef ref);

}  // namespace darwin::cf

#endif  // KELVA_DARWIN_CF_OBJECT_H_
