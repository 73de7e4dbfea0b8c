#ifndef KELVA_TESTS_GNUSTEP_WORKSPACE_RECORDER_H_
#define KELVA_TESTS_GNUSTEP_WORKSPACE_RECORDER_H_

#import <AppKit/AppKit.h>

#include <string>
#include <vector>

// The two operations of the workspace that the agent uses, recorded in place of being done. GNUstep lacks the launch, and
// looks applications up by name, not by identifier.

/// One launch as the agent asked for it.
struct RecordedLaunch {
  std::string path;
  unsigned long options = 0;
  bool hasConfiguration = false;
  bool hasError = false;
};

/// What has been asked so far, and what is answered.
struct WorkspaceRecord {
  std::vector<std::string> lookups;
  std::vector<RecordedLaunch> launches;
  /// The application's path; null for one that is not installed.
  NSString* installedPath = @"/Applications/Stand-in.app";
  /// Objects that a lookup left to the autorelease pool, and that the pool has released since.
  int pooledObjects = 0;
  int drainedObjects = 0;
};

WorkspaceRecord& Workspace();

@interface NSWorkspace (KelvaRecorder)
- (NSString*)absolutePathForAppBundleWithIdentifier:(NSString*)identifier;
- (NSRunningApplication*)launchApplicationAtURL:(NSURL*)url
                                        options:(NSWorkspaceLaunchOptions)options
                                  configuration:(NSDictionary*)configuration
                                          error:(NSError**)error;
@end

#endif  // KELVA_TESTS_GNUSTEP_WORKSPACE_RECORDER_H_
