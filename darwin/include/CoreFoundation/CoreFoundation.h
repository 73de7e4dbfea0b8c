#ifndef KELVA_DARWIN_INCLUDE_CORE_FOUNDATION_CORE_FOUNDATION_H_
#define KELVA_DARWIN_INCLUDE_CORE_FOUNDATION_CORE_FOUNDATION_H_

// The part of CoreFoundation that this project uses, with the framework's own signatures and meaning. A call that is
// missing here does not compile.

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef unsigned char Boolean;
typedef signed long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFHashCode;
typedef unsigned int UInt32;
typedef UInt32 CFStringEncoding;
typedef double CFTimeInterval;
typedef const void* CFTypeRef;

typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef const struct __CFBoolean* CFBooleanRef;
typedef const struct __CFNumber* CFNumberRef;
typedef struct __CFDictionary* CFMutableDictionaryRef;
typedef struct __CFRunLoop* CFRunLoopRef;
typedef struct __CFRunLoopSource* CFRunLoopSourceRef;

typedef CFStringRef CFRunLoopMode;

/* CFBase.h */

extern const CFAllocatorRef kCFAllocatorDefault; /* NULL */

CFTypeRef CFRetain(CFTypeRef cf);
void CFRelease(CFTypeRef cf);
CFIndex CFGetRetainCount(CFTypeRef cf);
CFTypeID CFGetTypeID(CFTypeRef cf);
Boolean CFEqual(CFTypeRef cf1, CFTypeRef cf2);
CFHashCode CFHash(CFTypeRef cf);

/* CFString.h */

#define kCFStringEncodingMacRoman ((CFStringEncoding)0)
#define kCFStringEncodingUTF8 ((CFStringEncoding)0x08000100)

CFTypeID CFStringGetTypeID(void);
CFStringRef CFStringCreateWithCString(CFAllocatorRef alloc, const char* cStr, CFStringEncoding encoding);
Boolean CFStringGetCString(CFStringRef theString, char* buffer, CFIndex bufferSize, CFStringEncoding encoding);

/* One immortal string for each text. */
CFStringRef __CFStringMakeConstantString(const char* cStr);
#define CFSTR(cStr) __CFStringMakeConstantString("" cStr "")

/* CFDictionary.h */

typedef const void* (*CFDictionaryRetainCallBack)(CFAllocatorRef allocator, const void* value);
typedef void (*CFDictionaryReleaseCallBack)(CFAllocatorRef allocator, const void* value);
typedef CFStringRef (*CFDictionaryCopyDescriptionCallBack)(const void* value);
typedef Boolean (*CFDictionaryEqualCallBack)(const void* value1, const void* value2);
typedef CFHashCode (*CFDictionaryHashCallBack)(const void* value);

typedef struct {
  CFIndex version;
  CFDictionaryRetainCallBack retain;
  CFDictionaryReleaseCallBack release;
  CFDictionaryCopyDescriptionCallBack copyDescription;
  CFDictionaryEqualCallBack equal;
  CFDictionaryHashCallBack hash;
} CFDictionaryKeyCallBacks;

typedef struct {
  CFIndex version;
  CFDictionaryRetainCallBack retain;
  CFDictionaryReleaseCallBack release;
  CFDictionaryCopyDescriptionCallBack copyDescription;
  CFDictionaryEqualCallBack equal;
} CFDictionaryValueCallBacks;

extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

CFTypeID CFDictionaryGetTypeID(void);
CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks);
void CFDictionarySetValue(CFMutableDictionaryRef theDict, const void* key, const void* value);
const void* CFDictionaryGetValue(CFDictionaryRef theDict, const void* key);
CFIndex CFDictionaryGetCount(CFDictionaryRef theDict);

/* CFNumber.h */

typedef CFIndex CFNumberType;
enum { kCFNumberSInt32Type = 3, kCFNumberSInt64Type = 4 };

extern const CFBooleanRef kCFBooleanTrue;
extern const CFBooleanRef kCFBooleanFalse;

CFTypeID CFBooleanGetTypeID(void);
Boolean CFBooleanGetValue(CFBooleanRef boolean);
CFTypeID CFNumberGetTypeID(void);
/* NULL for a type that is not listed above. */
CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType theType, const void* valuePtr);
/* False when the value does not fit. */
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType theType, void* valuePtr);

/* CFRunLoop.h */

enum { kCFRunLoopRunFinished = 1, kCFRunLoopRunStopped = 2, kCFRunLoopRunTimedOut = 3, kCFRunLoopRunHandledSource = 4 };
typedef int32_t CFRunLoopRunResult;

extern const CFRunLoopMode kCFRunLoopDefaultMode; /* "kCFRunLoopDefaultMode" */

/* Of these fields only info and perform are looked at. */
typedef struct {
  CFIndex version;
  void* info;
  const void* (*retain)(const void* info);
  void (*release)(const void* info);
  CFStringRef (*copyDescription)(const void* info);
  Boolean (*equal)(const void* info1, const void* info2);
  CFHashCode (*hash)(const void* info);
  void (*schedule)(void* info, CFRunLoopRef rl, CFRunLoopMode mode);
  void (*cancel)(void* info, CFRunLoopRef rl, CFRunLoopMode mode);
  void (*perform)(void* info);
} CFRunLoopSourceContext;

CFRunLoopSourceRef CFRunLoopSourceCreate(CFAllocatorRef allocator, CFIndex order, CFRunLoopSourceContext* context);
void CFRunLoopSourceSignal(CFRunLoopSourceRef source);

CFRunLoopRef CFRunLoopGetCurrent(void);
void CFRunLoopAddSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode mode);
void CFRunLoopRemoveSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode mode);
Boolean CFRunLoopContainsSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode mode);
void CFRunLoopSourceInvalidate(CFRunLoopSourceRef source);
Boolean CFRunLoopSourceIsValid(CFRunLoopSourceRef source);
void CFRunLoopRun(void);
CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds, Boolean returnAfterSourceHandled);
void CFRunLoopStop(CFRunLoopRef rl);
void CFRunLoopWakeUp(CFRunLoopRef rl);

#ifdef __cplusplus
}
#endif

#endif  // KELVA_DARWIN_INCLUDE_CORE_FOUNDATION_CORE_FOUNDATION_H_
