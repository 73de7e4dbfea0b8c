#ifndef KELVA_DARWIN_CF_EVENT_LOOP_H_
#define KELVA_DARWIN_CF_EVENT_LOOP_H_

namespace darwin {

// For a program with an event loop of its own: instead of running this thread's run loop it watches one descriptor.

/// A descriptor that is readable when this thread's run loop has something to do in the default mode. It belongs to the
/// run loop and stays the same for the thread's life. Throws std::system_error when the system has none left.
int EventDescriptor();

/// Does what is due in the default mode, without waiting. Call it when the descriptor is readable, on the same thread.
void DispatchEvents();

}  // namespace darwin

#endif  // KELVA_DARWIN_CF_EVENT_LOOP_H_
