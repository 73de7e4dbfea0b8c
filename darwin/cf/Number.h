#ifndef KELVA_DARWIN_CF_NUMBER_H_
#define KELVA_DARWIN_CF_NUMBER_H_

#include <cstdint>

#include "darwin/cf/Object.h"

namespace darwin::cf {

/// A number property: unsigned 64-bit, as the registry compares them.
class Number final : public Object {
 public:
  explicit Number(std::uint64_t value) : Object(Type::kNumber), value_(value) {}
  std::uint64_t Value() const { return value_; }
  bool Equals(const Object& other) const override;
  CFHashCode Hash() const override { return value_; }

 private:
  const std::uint64_t value_;
};

/// True or false, which are not numbers here. Two constants, never released.
class Truth final : public Object {
 public:
  Truth(bool value, Lifetime lifetime) : Object(Type::kBoolean, lifetime), value_(value) {}
  bool Value() const { return value_; }
  CFHashCode Hash() const override { return value_; }

 private:
  const bool value_;
};

/// The constant for a value.
CFTypeRef MakeBoolean(bool value);

}  // namespace darwin::cf

#endif  // KELVA_DARWIN_CF_NUMBER_H_
