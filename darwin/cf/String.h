#ifndef KELVA_DARWIN_CF_STRING_H_
#define KELVA_DARWIN_CF_STRING_H_

#include <string>
#include <utility>

#include "darwin/cf/Object.h"

namespace darwin::cf {

/// A string. Two strings of the same characters are equal, whatever encodings they were made from.
class String final : public Object {
 public:
  explicit String(std::string utf8, Lifetime lifetime = Lifetime::kCounted)
      : Object(Type::kString, lifetime), utf8_(std::move(utf8)) {}

  const std::string& Utf8() const { return utf8_; }
  bool Equals(const Object& other) const override;
  CFHashCode Hash() const override;

 private:
  const std::string utf8_;
};

/// The text of a string object; null when the reference is null or not a string.
const std::string* TextOf(CFTypeRef ref);

/// A new string with one reference for the caller.
CFStringRef MakeString(std::string utf8);

}  // namespace darwin::cf

#endif  // KELVA_DARWIN_CF_STRING_H_
