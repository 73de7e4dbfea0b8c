#ifndef KELVA_DARWIN_CF_DICTIONARY_H_
#define KELVA_DARWIN_CF_DICTIONARY_H_

#include <utility>
#include <vector>

#include "darwin/cf/Object.h"

namespace darwin::cf {

/// A mutable dictionary. Without callbacks it retains nothing and compares keys by pointer.
class Dictionary final : public Object {
 public:
  Dictionary(const CFDictionaryKeyCallBacks* keys, const CFDictionaryValueCallBacks* values);
  ~Dictionary() override;

  void Set(const void* key, const void* value);
  const void* Get(const void* key) const;
  const std::vector<std::pair<const void*, const void*>>& Entries() const { return entries_; }
  /// True when keys and values are CoreFoundation objects, so that they can be looked into.
  bool HoldsObjects() const;
  bool Equals(const Object& other) const override;
  CFHashCode Hash() const override { return entries_.size(); }

 private:
  std::size_t Find(const void* key) const;

  const CFDictionaryKeyCallBacks keys_;
  const CFDictionaryValueCallBacks values_;
  std::vector<std::pair<const void*, const void*>> entries_;  // few, so searched one by one
};

}  // namespace darwin::cf

#endif  // KELVA_DARWIN_CF_DICTIONARY_H_
