#ifndef KELVA_TESTS_DOORS_READINGS_H_
#define KELVA_TESTS_DOORS_READINGS_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tests/doors/Table.h"
#include "vcam/faults/Fault.h"

// What a program gets that reads parts of a file with a fault at the n-th command: written by hand, a letter for each n.

namespace tests::doors {

/// Whether the camera honours the offsets of reads.
enum class Order { kAny, kForwardOnly };

inline constexpr char kRight = '.';
inline constexpr char kOtherBytes = 'o';  ///< as many as asked for, and no error: the fault changes what is read
inline constexpr char kTransfer = 'T';    ///< CameraTransferError
inline constexpr char kTruncated = 't';   ///< FileReadError, for this and the following reasons
inline constexpr char kSurplus = 's';
inline constexpr char kSizeChanged = 'z';
inline constexpr char kRightOrTransfer = '?';  ///< a command that was given up may hold up the next one

/// The commands without a fault.
std::size_t CommandsOf(Order order);
/// The bytes that have moved before the n-th of them.
std::uint64_t BytesBefore(Order order, std::size_t command);

std::string_view ExpectedReading(Order order, vcam::FaultKind fault, Counting counting);

}  // namespace tests::doors

#endif  // KELVA_TESTS_DOORS_READINGS_H_
