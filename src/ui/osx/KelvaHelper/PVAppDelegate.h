#ifndef KELVA_UI_OSX_KELVA_HELPER_PV_APP_DELEGATE_H_
#define KELVA_UI_OSX_KELVA_HELPER_PV_APP_DELEGATE_H_

#import <Cocoa/Cocoa.h>

/// The delegate of the agent's application: from the end of launching on, each camera that is attached starts the
/// desktop application. Cameras that are there already start nothing.
///
/// A listener that the system refuses is an OsxCameraError, which leaves the method: an agent that cannot listen has no
/// reason to run.
@interface PVAppDelegate : NSObject <NSApplicationDelegate>

- (void)applicationDidFinishLaunching:(NSNotification*)notification;

@end

#endif  // KELVA_UI_OSX_KELVA_HELPER_PV_APP_DELEGATE_H_
