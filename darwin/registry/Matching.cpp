// Whether a service fits a matching dictionary.

#include "darwin/registry/Matching.h"

#include <IOKit/IOKitKeys.h>

#include "darwin/cf/Dictionary.h"
#include "darwin/cf/MacRoman.h"
#include "darwin/cf/Number.h"
#include "darwin/cf/String.h"

namespace darwin {
namespace {

using cf::Dictionary;
using cf::FromRef;
using cf::Type;

/// A plain value; nothing for a dictionary and for what cannot be handed over.
std::optional<PropertyValue> PlainValue(const cf::Object& object) {
  switch (object.GetType()) {
    case Type::kString:
      return static_cast<const cf::String&>(object).Utf8();
    case Type::kNumber:
      return static_cast<const cf::Number&>(object).Value();
    case Type::kBoolean:
      return static_cast<const cf::Truth&>(object).Value();
    default:
      return std::nullopt;
  }
}

const Dictionary* AsDictionary(const void* ref) {
  const cf::Object& object = FromRef(ref);
  return object.GetType() == Type::kDictionary ? &static_cast<const Dictionary&>(object) : nullptr;
}

bool IsSerialisable(const void* value);

bool IsSerialisable(const Dictionary& dictionary) {
  if (!dictionary.HoldsObjects()) return false;
  for (const auto& [key, value] : dictionary.Entries()) {
    if (cf::TextOf(key) == nullptr || !IsSerialisable(value)) return false;
  }
  return true;
}

bool IsSerialisable(const void* value) {
  const Dictionary* dictionary = AsDictionary(value);
  return dictionary != nullptr ? IsSerialisable(*dictionary) : PlainValue(FromRef(value)).has_value();
}

}  // namespace

std::optional<Matching> Matching::FromDictionary(CFDictionaryRef ref) {
  const Dictionary* dictionary = AsDictionary(ref);
  if (dictionary == nullptr || !IsSerialisable(*dictionary)) return std::nullopt;
  Matching matching;
  for (const auto& [key, value] : dictionary->Entries()) {
    const std::string& name = *cf::TextOf(key);
    if (const std::string* text = cf::TextOf(value); text != nullptr && name == kIOProviderClassKey) {
      matching.className_ = *text;
    } else if (name == kIOPropertyMatchKey) {
      matching.RequireProperties(value);
    }
  }
  return matching;
}

/// Properties are never dictionaries, so a condition that is not a dictionary of plain values matches no entry.
void Matching::RequireProperties(const void* value) {
  const Dictionary* properties = AsDictionary(value);
  possible_ = properties != nullptr;
  if (!possible_) return;
  for (const auto& [key, wanted] : properties->Entries()) {
    std::optional<PropertyValue> plain = PlainValue(FromRef(wanted));
    possible_ = possible_ && plain.has_value();
    properties_.emplace(*cf::TextOf(key), std::move(plain).value_or(PropertyValue()));
  }
}

bool Matching::Accepts(const Entry& entry) const {
  if (!possible_ || (className_ && !entry.IsOfClass(*className_))) return false;
  for (const auto& [key, value] : properties_) {
    const PropertyValue* own = entry.Property(key);
    if (own == nullptr || *own != value) return false;
  }
  return true;
}

CFTypeRef MakePropertyObject(const PropertyValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) {
    // A device's bytes need not be UTF-8. Others are read as Mac Roman, in which every byte is a character.
    return cf::MakeString(cf::IsUtf8(*text) ? *text : cf::Utf8FromMacRoman(*text));
  }
  if (const auto* number = std::get_if<std::uint64_t>(&value)) {
    return static_cast<const cf::Object*>(new cf::Number(*number));
  }
  return cf::MakeBoolean(std::get<bool>(value));
}

}  // namespace darwin
