#ifndef KELVA_TESTS_UMOCKDEV_HAND_OVER_H_
#define KELVA_TESTS_UMOCKDEV_HAND_OVER_H_

namespace mock {

/// A command goes from the program's thread to the testbed's and back over sockets inside of GLib and umockdev, which
/// ThreadSanitizer cannot see into. These two say it to it: what a thread did before GiveOver has happened for the one
/// that calls TakeOver after. In other builds they do nothing.
void GiveOver();
void TakeOver();

}  // namespace mock

#endif  // KELVA_TESTS_UMOCKDEV_HAND_OVER_H_
