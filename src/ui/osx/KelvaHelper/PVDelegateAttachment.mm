// Gives the application its delegate, without a nib.

#import <Cocoa/Cocoa.h>

#include <cstdlib>

#import "src/ui/osx/KelvaHelper/AgentLock.h"
#import "src/ui/osx/KelvaHelper/PVAppDelegate.h"

/// Gives the application its delegate, which a nib file would otherwise do: this agent has no window, and so no nib. The
/// second copy of the agent gets none and ends.
/// A class of its own, so that the delegate is nothing but a delegate.
@interface PVDelegateAttachment : NSObject
@end

@implementation PVDelegateAttachment

+ (void)load {
  @autoreleasepool {
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(attachDelegate:)
                                                 name:NSApplicationWillFinishLaunchingNotification
                                               object:nil];
  }
}

+ (void)attachDelegate:(NSNotification*)notification {
  if (!TakeAgentLock(AgentLockFolder())) {
    NSLog(@"KelvaHelper is already running. This copy ends.");
    // An orderly end: launchd starts the agent again after a failure.
    exit(EXIT_SUCCESS);
  }
  // The application does not retain its delegate; this reference does, until the process ends.
  static PVAppDelegate* delegate = [[PVAppDelegate alloc] init];
  [NSApp setDelegate:delegate];
}

@end
