#ifndef KELVA_USB_OSX_TESTING_FAKE_FRAMEWORK_H_
#define KELVA_USB_OSX_TESTING_FAKE_FRAMEWORK_H_

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>
#include <gtest/gtest.h>

#include <cstring>
#include <deque>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

// A recording fake of the framework calls that this folder makes. It stands in their place at link time: a test program
// includes FakeCalls.h, which defines them, exactly once. Every call is written down, every handle and every
// CoreFoundation reference is counted, each call can be made to fail, and a use that would crash the real frameworks
// fails the test.

namespace fake {

/// A CoreFoundation object: a string, or a dictionary of texts and dictionaries.
struct Object {
  std::string text;
  std::map<std::string, Object*> values;
  int references = 1;
};

/// A registry entry.
struct Entry {
  std::string name;
  std::string className;
  io_object_t parent = 0;
  std::map<std::string, std::string> properties;
};

/// One registered notification, with what is needed to deliver it.
struct Matching {
  std::string className;
  IOServiceMatchingCallback handler = nullptr;
  void* context = nullptr;
  io_iterator_t iterator = 0;
};
struct Interest {
  io_service_t service = 0;
  IOServiceInterestCallback handler = nullptr;
  void* refCon = nullptr;
};

class Framework {
 public:
  /// Adds an entry; with a class name it is also a service that matching finds. Numbers are never used twice.
  io_object_t Add(const Entry& entry) {
    const io_object_t number = Number(entry.name);
    entries[number] = entry;
    return number;
  }

  /// Gives the caller one reference, as every call that returns an object does.
  io_object_t Hand(io_object_t object) {
    ++references[object];
    return object;
  }

  io_iterator_t MakeIterator(const std::string& name, const std::vector<io_object_t>& content) {
    const io_iterator_t iterator = Hand(Number(name));
    iterators[iterator].assign(content.begin(), content.end());
    return iterator;
  }

  /// The services of a class that have the wanted properties, in the order in which they were added.
  std::vector<io_object_t> Services(const Object& matching) const {
    std::vector<io_object_t> found;
    for (const auto& [number, entry] : entries) {
      if (entry.className == matching.text && Has(entry, matching)) found.push_back(number);
    }
    return found;
  }

  void Log(const std::string& line) { log.push_back(line); }

  /// The next result prepared for this call; success when none is.
  kern_return_t Result(const std::string& call) {
    std::deque<kern_return_t>& queue = results[call];
    if (queue.empty()) return KERN_SUCCESS;
    const kern_return_t result = queue.front();
    queue.pop_front();
    return result;
  }

  std::string Name(io_object_t object) const {
    const auto found = names.find(object);
    return found == names.end() ? std::to_string(object) : found->second;
  }

  void Release(io_object_t object) {
    if (object == 0) return;
    Log("Release " + Name(object));
    if (--references[object] < 0) {
      ADD_FAILURE() << Name(object) << " was released too often";
    }
  }

  Object* NewObject(const std::string& text) {
    objects.push_back(std::make_unique<Object>(Object{text, {}, 1}));
    return objects.back().get();
  }

  /// The handles that somebody still has to give back, by name.
  std::map<std::string, int> OpenHandles() const {
    std::map<std::string, int> open;
    for (const auto& [object, count] : references) {
      if (count != 0) open[Name(object)] = count;
    }
    return open;
  }

  int OpenObjects() const {
    int count = 0;
    for (const auto& object : objects) count += object->references;
    return count;
  }

  io_object_t Number(const std::string& name) {
    names[++lastNumber] = name;
    return lastNumber;
  }

  std::vector<std::string> log;
  std::map<std::string, std::deque<kern_return_t>> results;
  std::map<io_object_t, Entry> entries;
  std::map<io_object_t, std::string> names;
  std::map<io_object_t, int> references;
  std::map<io_iterator_t, std::deque<io_object_t>> iterators;
  std::vector<std::unique_ptr<Object>> objects;
  std::vector<Matching> matchings;
  std::vector<Interest> interests;
  io_object_t lastNumber = 100;

  // The notification port: none when it is refused.
  bool refusesPort = false;
  int ports = 0;

  // What a refused interest registration leaves in the caller's handle.
  io_object_t refusedInterest = 0;

  // The user client: what it was asked, and what it answers.
  bool makesConnection = true;
  std::string request;
  std::string answer = std::string(8, '\0');
  std::string movedToBuffer;

  // The texts and encodings of the strings that were made.
  std::vector<std::pair<std::string, CFStringEncoding>> strings;

 private:
  static bool Has(const Entry& entry, const Object& matching) {
    const auto wanted = matching.values.find("IOPropertyMatch");
    if (wanted == matching.values.end()) return true;
    for (const auto& [key, value] : wanted->second->values) {
      const auto property = entry.properties.find(key);
      if (property == entry.properties.end() || property->second != value->text) return false;
    }
    return true;
  }
};

/// The one framework of the program; replaced for each test.
inline std::unique_ptr<Framework>& Current() {
  static auto framework = std::make_unique<Framework>();
  return framework;
}
inline Framework& Get() {
  return *Current();
}

/// Constant strings: immortal, one for each text, never counted.
inline Object* Constant(const std::string& text) {
  static auto& constants = *new std::map<std::string, Object>();
  return &constants.try_emplace(text, Object{text, {}, 1 << 20}).first->second;
}

inline bool IsConstant(const Object* object) {
  return object->references >= 1 << 19;
}

inline Object* AsObject(const void* reference, const char* call) {
  auto* const object = static_cast<Object*>(const_cast<void*>(reference));
  if (object == nullptr) {
    ADD_FAILURE() << call << "(NULL) crashes";
    return Constant("NULL");
  }
  EXPECT_GT(object->references, 0) << call << " of the released object " << object->text;
  return object;
}

inline void ReleaseObject(Object* object) {
  if (IsConstant(object)) return;
  if (--object->references > 0) return;
  for (const auto& [key, value] : object->values) ReleaseObject(value);
}

}  // namespace fake

#endif  // KELVA_USB_OSX_TESTING_FAKE_FRAMEWORK_H_
