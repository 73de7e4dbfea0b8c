#ifndef KELVA_USB_OSX_TESTING_FAKE_CALLS_H_
#define KELVA_USB_OSX_TESTING_FAKE_CALLS_H_

#include <cstdint>
#include <string>

#include "testing/FakeFramework.h"

// The framework calls themselves. Included by exactly one source of a test program.

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {};
const CFRunLoopMode kCFRunLoopDefaultMode = reinterpret_cast<CFRunLoopMode>(fake::Constant("kCFRunLoopDefaultMode"));
mach_port_t mach_task_self_ = 0x707;

void CFRelease(CFTypeRef cf) {
  fake::ReleaseObject(fake::AsObject(cf, "CFRelease"));
}

Boolean CFEqual(CFTypeRef cf1, CFTypeRef cf2) {
  const fake::Object* const one = fake::AsObject(cf1, "CFEqual");
  const fake::Object* const other = fake::AsObject(cf2, "CFEqual");
  fake::Get().Log("Equal " + one->text + " " + other->text);
  return one->text == other->text;
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef alloc, const char* cStr, CFStringEncoding encoding) {
  EXPECT_EQ(alloc, nullptr);
  fake::Get().strings.emplace_back(cStr, encoding);
  return reinterpret_cast<CFStringRef>(fake::Get().NewObject(cStr));
}

CFTypeID CFStringGetTypeID(void) {
  return 7;
}

// Whatever a property holds here is a string.
CFTypeID CFGetTypeID(CFTypeRef cf) {
  fake::AsObject(cf, "CFGetTypeID");
  return CFStringGetTypeID();
}

Boolean CFStringGetCString(CFStringRef theString, char* buffer, CFIndex bufferSize, CFStringEncoding encoding) {
  EXPECT_EQ(encoding, kCFStringEncodingMacRoman);
  const std::string& text = fake::AsObject(theString, "CFStringGetCString")->text;
  if (text.size() >= static_cast<std::size_t>(bufferSize)) return 0;
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  return 1;
}

CFStringRef __CFStringMakeConstantString(const char* cStr) {
  return reinterpret_cast<CFStringRef>(fake::Constant(cStr));
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef alloc, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks) {
  EXPECT_EQ(alloc, nullptr);
  EXPECT_EQ(capacity, 0);
  EXPECT_EQ(keyCallBacks, &kCFTypeDictionaryKeyCallBacks);
  EXPECT_EQ(valueCallBacks, &kCFTypeDictionaryValueCallBacks);
  return reinterpret_cast<CFMutableDictionaryRef>(fake::Get().NewObject("dictionary"));
}

void CFDictionarySetValue(CFMutableDictionaryRef theDict, const void* key, const void* value) {
  fake::Object* const retained = fake::AsObject(value, "CFDictionarySetValue");
  if (!fake::IsConstant(retained)) ++retained->references;
  fake::AsObject(theDict, "CFDictionarySetValue")->values[fake::AsObject(key, "CFDictionarySetValue")->text] = retained;
}

CFRunLoopRef CFRunLoopGetCurrent(void) {
  return reinterpret_cast<CFRunLoopRef>(fake::Constant("current run loop"));
}

void CFRunLoopAddSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode mode) {
  fake::Get().Log("AddSource " + fake::AsObject(rl, "CFRunLoopAddSource")->text + ", " +
                  fake::AsObject(source, "CFRunLoopAddSource")->text + ", " +
                  fake::AsObject(mode, "CFRunLoopAddSource")->text);
}

kern_return_t IOObjectRelease(io_object_t object) {
  fake::Get().Release(object);
  return KERN_SUCCESS;
}

kern_return_t IOObjectRetain(io_object_t object) {
  fake::Get().Log("Retain " + fake::Get().Name(object));
  fake::Get().Hand(object);
  return KERN_SUCCESS;
}

io_object_t IOIteratorNext(io_iterator_t iterator) {
  std::deque<io_object_t>& content = fake::Get().iterators[iterator];
  if (content.empty()) {
    fake::Get().Log("Next none");
    return 0;
  }
  const io_object_t next = content.front();
  content.pop_front();
  fake::Get().Log("Next " + fake::Get().Name(next));
  return fake::Get().Hand(next);
}

CFMutableDictionaryRef IOServiceMatching(const char* name) {
  return reinterpret_cast<CFMutableDictionaryRef>(fake::Get().NewObject(name));
}

kern_return_t IOServiceGetMatchingServices(mach_port_t mainPort, CFDictionaryRef matching, io_iterator_t* existing) {
  EXPECT_EQ(mainPort, 0U);
  fake::Object* const wanted = fake::AsObject(matching, "IOServiceGetMatchingServices");
  fake::Get().Log("Search " + wanted->text);
  const std::vector<io_object_t> found = fake::Get().Services(*wanted);
  fake::ReleaseObject(wanted);
  const kern_return_t result = fake::Get().Result("IOServiceGetMatchingServices");
  if (result == KERN_SUCCESS) *existing = found.empty() ? 0 : fake::Get().MakeIterator("iterator", found);
  return result;
}

IONotificationPortRef IONotificationPortCreate(mach_port_t mainPort) {
  EXPECT_EQ(mainPort, 0U);
  fake::Get().Log("CreatePort");
  if (fake::Get().refusesPort) return nullptr;
  ++fake::Get().ports;
  return reinterpret_cast<IONotificationPortRef>(fake::Constant("port"));
}

void IONotificationPortDestroy(IONotificationPortRef notify) {
  fake::AsObject(notify, "IONotificationPortDestroy");
  fake::Get().Log("DestroyPort");
  --fake::Get().ports;
}

CFRunLoopSourceRef IONotificationPortGetRunLoopSource(IONotificationPortRef notify) {
  fake::AsObject(notify, "IONotificationPortGetRunLoopSource");
  return reinterpret_cast<CFRunLoopSourceRef>(fake::Constant("source of the port"));
}

kern_return_t IOServiceAddMatchingNotification(IONotificationPortRef notifyPort, const io_name_t notificationType,
                                               CFDictionaryRef matching, IOServiceMatchingCallback callback,
                                               void* refCon, io_iterator_t* notification) {
  fake::AsObject(notifyPort, "IOServiceAddMatchingNotification");
  EXPECT_STREQ(notificationType, "IOServiceFirstMatch");
  fake::Object* const wanted = fake::AsObject(matching, "IOServiceAddMatchingNotification");
  EXPECT_TRUE(wanted->values.empty());
  fake::Get().Log("Notify " + wanted->text);
  const std::string className = wanted->text;
  const std::vector<io_object_t> found = fake::Get().Services(*wanted);
  fake::ReleaseObject(wanted);
  const kern_return_t result = fake::Get().Result("IOServiceAddMatchingNotification");
  if (result != KERN_SUCCESS) return result;
  *notification = fake::Get().MakeIterator("notification of " + className, found);
  fake::Get().matchings.push_back({className, callback, refCon, *notification});
  return KERN_SUCCESS;
}

kern_return_t IOServiceAddInterestNotification(IONotificationPortRef notifyPort, io_service_t service,
                                               const io_name_t interestType, IOServiceInterestCallback callback,
                                               void* refCon, io_object_t* notification) {
  fake::AsObject(notifyPort, "IOServiceAddInterestNotification");
  EXPECT_STREQ(interestType, "IOGeneralInterest");
  fake::Get().Log("Interest in " + fake::Get().Name(service));
  const kern_return_t result = fake::Get().Result("IOServiceAddInterestNotification");
  if (result != KERN_SUCCESS) {
    *notification = fake::Get().refusedInterest;
    return result;
  }
  fake::Get().interests.push_back({service, callback, refCon});
  *notification = fake::Get().Hand(fake::Get().Number("interest in " + fake::Get().Name(service)));
  return KERN_SUCCESS;
}

kern_return_t IORegistryEntryGetParentEntry(io_registry_entry_t entry, const io_name_t plane,
                                            io_registry_entry_t* parent) {
  EXPECT_STREQ(plane, "IOService");
  fake::Get().Log("Parent of " + fake::Get().Name(entry));
  const io_object_t found = fake::Get().entries[entry].parent;
  *parent = found == 0 ? 0 : fake::Get().Hand(found);
  return found == 0 ? kIOReturnNoDevice : KERN_SUCCESS;
}

CFTypeRef IORegistryEntryCreateCFProperty(io_registry_entry_t entry, CFStringRef key, CFAllocatorRef allocator,
                                          IOOptionBits options) {
  EXPECT_EQ(allocator, nullptr);
  EXPECT_EQ(options, 0u);
  const std::string name = fake::AsObject(key, "IORegistryEntryCreateCFProperty")->text;
  fake::Get().Log("Property " + name + " of " + fake::Get().Name(entry));
  EXPECT_GT(fake::Get().references[entry], 0) << "property of a released entry";
  const auto& properties = fake::Get().entries[entry].properties;
  const auto found = properties.find(name);
  return found == properties.end() ? nullptr : fake::Get().NewObject(found->second);
}

kern_return_t IOServiceOpen(io_service_t service, task_port_t owningTask, uint32_t type, io_connect_t* connect) {
  EXPECT_EQ(owningTask, mach_task_self_);
  EXPECT_EQ(type, 0u);
  fake::Get().Log("Open " + fake::Get().Name(service));
  if (fake::Get().makesConnection) *connect = fake::Get().Hand(fake::Get().Number("connection"));
  return fake::Get().Result("IOServiceOpen");
}

kern_return_t IOServiceClose(io_connect_t connect) {
  fake::Get().Log("Close " + fake::Get().Name(connect));
  if (connect == 0) return MACH_SEND_INVALID_DEST;
  if (--fake::Get().references[connect] < 0) {
    ADD_FAILURE() << "closed twice";
  }
  return KERN_SUCCESS;
}

kern_return_t IOConnectCallScalarMethod(mach_port_t connection, uint32_t selector, const uint64_t* input,
                                        uint32_t inputCnt, uint64_t* output, uint32_t* outputCnt) {
  EXPECT_EQ(input, nullptr);
  EXPECT_EQ(inputCnt, 0u);
  EXPECT_EQ(output, nullptr);
  EXPECT_EQ(outputCnt, nullptr);
  fake::Get().Log("Scalar " + std::to_string(selector) + " on " + fake::Get().Name(connection));
  if (connection == 0) return MACH_SEND_INVALID_DEST;
  return fake::Get().Result("IOConnectCallScalarMethod");
}

kern_return_t IOConnectCallStructMethod(mach_port_t connection, uint32_t selector, const void* inputStruct,
                                        size_t inputStructCnt, void* outputStruct, size_t* outputStructCnt) {
  fake::Get().Log("Struct " + std::to_string(selector) + " on " + fake::Get().Name(connection));
  fake::Get().request.assign(static_cast<const char*>(inputStruct), inputStructCnt);
  EXPECT_EQ(*outputStructCnt, 8u);
  if (connection == 0) return MACH_SEND_INVALID_DEST;
  std::memcpy(outputStruct, fake::Get().answer.data(), 8);
  return fake::Get().Result("IOConnectCallStructMethod");
}

}  // extern "C"

#endif  // KELVA_USB_OSX_TESTING_FAKE_CALLS_H_
