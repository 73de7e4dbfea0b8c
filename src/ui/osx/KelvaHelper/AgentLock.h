#ifndef KELVA_UI_OSX_KELVA_HELPER_AGENT_LOCK_H_
#define KELVA_UI_OSX_KELVA_HELPER_AGENT_LOCK_H_

#import <Foundation/Foundation.h>

/// The folder of this user's lock.
NSString* AgentLockFolder();

/// Takes the lock that keeps the agent to one copy, in a file below `folder`, which is made when missing. Returns false
/// when another process holds it. The lock lasts until the process ends, however it ends. Where no lock can be had (no
/// such folder, a file system without locks) the answer is true: two agents are better than none.
bool TakeAgentLock(NSString* folder);

#endif  // KELVA_UI_OSX_KELVA_HELPER_AGENT_LOCK_H_
