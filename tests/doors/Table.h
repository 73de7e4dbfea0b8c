#ifndef KELVA_TESTS_DOORS_TABLE_H_
#define KELVA_TESTS_DOORS_TABLE_H_

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "vcam/faults/Fault.h"

// Every command of the camera, every fault of the virtual camera, and what a program gets of OsxCamera::Transfer for each
// pair: written by hand, whatever door the command goes through.

namespace tests::doors {

using Bytes = std::vector<std::uint8_t>;

inline constexpr const char* kSerial = "A";

/// One command: its block, and what the host sends or asks for.
struct Exchange {
  Bytes block;
  Bytes sent{};
  std::uint32_t asked = 0;
};

/// A command, what has to come before it, and what a camera without a fault answers to it.
struct Row {
  const char* name;
  Exchange command;
  Bytes answer{};
  std::vector<Exchange> before{};
  /// Where the answer says how much follows, where something is, and which of its NULs end a name. What it has none of,
  /// the faults about it do elsewhere: in the first 32 bits, in every NUL.
  std::vector<std::size_t> counts{};
  std::vector<std::size_t> offsets{};
  std::vector<std::size_t> nuls{};
  /// A piece of a longer answer: the fault of an answer without end fills it.
  bool isPiece = false;
  /// The bytes that do not depend on the moment; 0 for all.
  std::size_t steady = 0;
};

std::span<const Row> Rows();

/// Puts on the card what the rows are about.
void FillCard(const std::filesystem::path& card);

/// What becomes of the number of bytes that a camera claims to have moved.
enum class Counting {
  kAsTold,    ///< it reaches the program as it stands
  kByKernel,  ///< the host holds it against what arrived, and takes no more than it asked for
};

struct Outcome {
  /// The last line of the CameraTransferError; empty when there was none.
  std::string error{};
  int moved = 0;
  Bytes data{};
};

/// With a fault that is armed right before the row's command, to strike at once.
Outcome Expected(const Row& row, vcam::FaultKind fault, Counting counting);

}  // namespace tests::doors

#endif  // KELVA_TESTS_DOORS_TABLE_H_
