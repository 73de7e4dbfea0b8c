#ifndef KELVA_DARWIN_REGISTRY_TESTING_REGISTRY_FIXTURE_H_
#define KELVA_DARWIN_REGISTRY_TESTING_REGISTRY_FIXTURE_H_

#include <IOKit/IOKitLib.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "darwin/registry/Accounting.h"
#include "darwin/registry/Registry.h"

namespace darwin {

/// Gives each test the process's registry, empty, and checks that the test leaves nothing in it and holds nothing of
/// it.
class RegistryFixture : public ::testing::Test {
 protected:
  void TearDown() override {
    registry_.SetSource(nullptr);
    const RegistryAccounting left = AccountForRegistry();
    EXPECT_EQ(left.handles, 0u);
    EXPECT_EQ(left.ports, 0u);
    EXPECT_EQ(left.services, 0u);
    EXPECT_EQ(left.entries, 1u) << "the root alone";
  }

  Registry& TheRegistry() { return registry_; }

  /// Adds a service below the root.
  EntryId Publish(EntryDescription description) {
    const EntryId entry = registry_.Add(registry_.Root(), std::move(description));
    registry_.RegisterService(entry);
    return entry;
  }

  /// How many services a dictionary matches; consumes it.
  static std::size_t Count(CFDictionaryRef matching) {
    io_iterator_t iterator = 0;
    EXPECT_EQ(IOServiceGetMatchingServices(kIOMainPortDefault, matching, &iterator), kIOReturnSuccess);
    std::size_t count = 0;
    while (const io_object_t service = IOIteratorNext(iterator)) {
      IOObjectRelease(service);
      ++count;
    }
    IOObjectRelease(iterator);
    return count;
  }

  /// One more reference to the first service of a class, for the caller; 0 without one.
  static io_service_t First(const char* className) {
    io_iterator_t iterator = 0;
    IOServiceGetMatchingServices(kIOMainPortDefault, IOServiceMatching(className), &iterator);
    const io_service_t service = IOIteratorNext(iterator);
    IOObjectRelease(iterator);
    return service;
  }

 private:
  Registry& registry_ = Registry::Shared();
};

}  // namespace darwin

#endif  // KELVA_DARWIN_REGISTRY_TESTING_REGISTRY_FIXTURE_H_
