// What the agent of macOS does when a camera is attached.

#include "src/ui/osx/KelvaHelper/Callback.h"

#import <Cocoa/Cocoa.h>

// These two operations are deprecated from macOS 11 on. Their successors launch asynchronously and report on another
// thread, but the agent has one thread and wants the outcome when the call returns. The configuration is nil, although its
// declaration asks for one: nil means the defaults, as an empty dictionary does.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
#pragma clang diagnostic ignored "-Wnonnull"

namespace {

NSString* DesktopApplicationPath() {
  return [[NSWorkspace sharedWorkspace] absolutePathForAppBundleWithIdentifier:@KELVA_DESKTOP_ID];
}

void LaunchDesktopApplication() {
  NSString* path = DesktopApplicationPath();
  if ([path length] == 0) {
    return;  // not installed
  }
  [[NSWorkspace sharedWorkspace] launchApplicationAtURL:[NSURL fileURLWithPath:path]
                                                options:NSWorkspaceLaunchInhibitingBackgroundOnly
                                          configuration:nil
                                                  error:nullptr];
}

}  // namespace

#pragma clang diagnostic pop

void Callback(boost::shared_ptr<Camera>, void* context) {
  @autoreleasepool {
    if (*static_cast<const bool*>(context)) LaunchDesktopApplication();
  }
}
