#import "tests/gnustep/WorkspaceRecorder.h"

WorkspaceRecord& Workspace() {
  static WorkspaceRecord record;
  return record;
}

/// Tells when the pool that it was left to has been emptied.
@interface KelvaPooledObject : NSObject
@end

@implementation KelvaPooledObject

- (void)dealloc {
  ++Workspace().drainedObjects;
  [super dealloc];
}

@end

// The category's lookup is meant to take the place of GNUstep's.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

@implementation NSWorkspace (KelvaRecorder)

- (NSString*)absolutePathForAppBundleWithIdentifier:(NSString*)identifier {
  Workspace().lookups.emplace_back([identifier UTF8String]);
  [[[KelvaPooledObject alloc] init] autorelease];
  ++Workspace().pooledObjects;
  return Workspace().installedPath;
}

- (NSRunningApplication*)launchApplicationAtURL:(NSURL*)url
                                        options:(NSWorkspaceLaunchOptions)options
                                  configuration:(NSDictionary*)configuration
                                          error:(NSError**)error {
  Workspace().launches.push_back({[[url path] UTF8String], options, configuration != nil, error != nullptr});
  return nil;
}

@end

#pragma clang diagnostic pop
