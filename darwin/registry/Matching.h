#ifndef KELVA_DARWIN_REGISTRY_MATCHING_H_
#define KELVA_DARWIN_REGISTRY_MATCHING_H_

#include <CoreFoundation/CoreFoundation.h>

#include <map>
#include <optional>
#include <string>

#include "darwin/registry/Entry.h"
#include "darwin/registry/Registry.h"

namespace darwin {

/// What a matching dictionary asks for, copied out of it: later edits of the dictionary have no effect.
class Matching {
 public:
  /// Nothing when a value in the dictionary cannot be handed to the kernel.
  static std::optional<Matching> FromDictionary(CFDictionaryRef dictionary);

  /// All conditions hold: the class or a superclass, and every property, which must be the entry's own and equal.
  bool Accepts(const Entry& entry) const;

 private:
  void RequireProperties(const void* value);

  bool possible_ = true;  // false: no entry can match
  std::optional<std::string> className_;
  std::map<std::string, PropertyValue> properties_;
};

/// A new CoreFoundation object of a property's value, with one reference for the caller.
CFTypeRef MakePropertyObject(const PropertyValue& value);

}  // namespace darwin

#endif  // KELVA_DARWIN_REGISTRY_MATCHING_H_
