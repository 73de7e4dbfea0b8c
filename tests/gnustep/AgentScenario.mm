// The whole agent, its own main included, watched from inside: this class comes with the program as a category of its
// life, plugs cameras in and out while the application runs, and ends it with the number of its first unmet expectation. With
// --stay nothing happens, and the agent runs until it is ended.

#import <AppKit/AppKit.h>
#import <GNUstepBase/NSObject+GNUstepBase.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#import "src/ui/osx/KelvaHelper/PVAppDelegate.h"
#import "tests/gnustep/WorkspaceRecorder.h"

#include "darwin/cf/EventLoop.h"
#include "darwin/virtual/VirtualRegistry.h"

namespace {

std::unique_ptr<darwin::VirtualRegistry> registry;

darwin::EntryId Plug(const std::string& serial) {
  darwin::CameraDescription camera;
  camera.serial = serial;
  camera.vendor = "Kelva";
  camera.product = "Camera";
  camera.revision = "1.00";
  return registry->AttachCamera(camera);
}

/// On a Mac the application's own loop does this.
void RunLoopTurns() {
  darwin::DispatchEvents();
}

void Expect(bool holds, const char* what) {
  std::printf("%s: %s\n", holds ? "ok" : "FAILED", what);
  std::fflush(stdout);
  if (!holds) std::_Exit(1);
}

void ExpectLaunches(std::size_t count, const char* what) {
  RunLoopTurns();
  Expect(Workspace().launches.size() == count, what);
}

}  // namespace

@interface KelvaScenario : NSObject
@end

@implementation KelvaScenario

+ (void)load {
  @autoreleasepool {
    NSNotificationCenter* center = [NSNotificationCenter defaultCenter];
    [center addObserver:self
               selector:@selector(willFinish:)
                   name:NSApplicationWillFinishLaunchingNotification
                 object:nil];
    [center addObserver:self
               selector:@selector(didFinish:)
                   name:NSApplicationDidFinishLaunchingNotification
                 object:nil];
  }
}

+ (void)willFinish:(NSNotification*)notification {
  registry = std::make_unique<darwin::VirtualRegistry>();
  Plug("KV0001");
}

+ (void)didFinish:(NSNotification*)notification {
  if ([[[NSProcessInfo processInfo] arguments] containsObject:@"--stay"]) {
    std::printf("the agent stays\n");
    std::fflush(stdout);
    return;
  }
  // The delegate hears of the same moment, before or after: the scenario goes on when both have.
  [self performSelector:@selector(play) withObject:nil afterDelay:0];
}

+ (void)play {
  Expect([[NSApp delegate] isKindOfClass:[PVAppDelegate class]], "the application has its delegate without a nib");
  ExpectLaunches(0, "the camera that was there at the start launches nothing");
  const darwin::EntryId second = Plug("KV0002");
  ExpectLaunches(1, "a second camera launches once");
  Expect(Workspace().launches[0].options == 0x80, "the launch has its one option");
  registry->Detach(second);
  ExpectLaunches(1, "unplugging launches nothing");
  Plug("KV0002");
  ExpectLaunches(2, "the same camera plugged in again launches again");
  Workspace().installedPath = nil;
  Plug("KV0003");
  ExpectLaunches(2, "an application that is not installed is not launched, and the agent goes on");
  Workspace().installedPath = @"/Applications/Stand-in.app";
  Plug("KV0004");
  ExpectLaunches(3, "installed again, it is launched again");
  registry.reset();
  std::printf("the scenario is over\n");
  [NSApp terminate:nil];
}

@end
