// What the agent of macOS does when a camera is attached.

#include "src/ui/osx/KelvaHelper/Callback.h"

#import <Cocoa/Cocoa.h>

// These two operations are deprecated from macOS 11 on, and their successors change what the agent does: the launch would
// be asynchronous and report from a thread of its own, while the agent has one thread and lets the workspace decide in the
// call. The launch takes no configuration, although its declaration asks for one: an empty dictionary would be a request
// for the defaults in words, nil is the same without them.
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
