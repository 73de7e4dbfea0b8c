#ifndef KELVA_EMBED_EVENT_LOOP_H_
#define KELVA_EMBED_EVENT_LOOP_H_

#include <chrono>

namespace kelva {

// Reports of cameras that come and go (kelva::Listener, Camera::ListenForCameraAttach, Camera::ListenForCameraLost) are
// made on the thread that listened, while that thread runs its events. It does so in one of three ways:
//
// - A program without a loop of its own calls RunEvents again and again.
// - A program with a loop of its own adds EventDescriptor to what that loop watches, and calls DispatchEvents when it is
//   readable.
// - On macOS, the main thread of an application with windows (AppKit, Qt) runs these events too and calls nothing here.
//
// An exception of a function that reports goes on to the caller of RunEvents or DispatchEvents, once the other reports
// that are due have been made.

/// Waits at most so long until something is due on this thread, and makes all reports that are due. A program that ends
/// by a flag looks at the flag in between.
void RunEvents(std::chrono::milliseconds timeout);

/// Makes the reports that are due on this thread, without waiting.
void DispatchEvents();

/// On Linux, a descriptor that is readable when DispatchEvents has something to do. It belongs to the library and stays
/// the same as long as this thread lives. Throws std::system_error when the system has no descriptor left. On macOS -1,
/// which poll(2) ignores: give that loop a time-out instead, and call DispatchEvents each time.
int EventDescriptor();

}  // namespace kelva

#endif  // KELVA_EMBED_EVENT_LOOP_H_
