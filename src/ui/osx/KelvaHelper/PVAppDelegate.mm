// The delegate of the agent of macOS: listens for cameras once the application has launched.

#import "src/ui/osx/KelvaHelper/PVAppDelegate.h"

#include "src/ui/osx/KelvaHelper/Callback.h"
#include "src/wifi/Camera.h"

namespace {

// False while the cameras that are there already are reported. Callbacks read it for as long as the process lives, so
// it outlives the method that registers them.
bool launch = false;

}  // namespace

@implementation PVAppDelegate

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
  launch = false;
  Camera::ListenForCameraAttach(Callback, &launch, false);
  launch = true;
}

@end
