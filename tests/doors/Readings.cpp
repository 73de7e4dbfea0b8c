#include "tests/doors/Readings.h"

#include <array>

namespace tests::doors {
namespace {

using vcam::FaultKind;

// Of a file of 70,000 bytes: 100 bytes at 69,000, the rest behind them; then, selected anew, the first 10.
//
// On a camera that honours offsets                          On one that is only read forward
//   1  select the file, 8 bytes of path
//   2  its size, 4 bytes
//   3  the first chunk, 65,536 bytes, for the proof
//   4  select, 5 size
//   6  512 bytes at 0
//   7  512 bytes at 64,512                                    the same; the bytes at 512 come
//   8  512 bytes at 0                                         8 select, 9 size
//   9  100 bytes at 69,000                                   10 skip 65,536 bytes, 11 skip 3,464 bytes, 12 read 100 bytes
//  10  the last 900 bytes                                    13
//  11  select, 12 size                                       14 select, 15 size
//  13  10 bytes at 0                                         16
constexpr std::array<std::uint64_t, 13> kMovedAny{8, 4, 65'536, 8, 4, 512, 512, 512, 100, 900, 8, 4, 10};
constexpr std::array<std::uint64_t, 16> kMovedForward{8, 4,      65'536, 8,   4,   512, 512, 8,
                                                      4, 65'536, 3'464,  100, 900, 8,   4,   10};

struct Reading {
  FaultKind fault;
  std::string_view any;
  std::string_view forward;
  // Where a kernel stands between: it refuses an answer of more than was asked for, and believes no such claim.
  std::string_view anyByKernel = any;
  std::string_view forwardByKernel = forward;
};

// Why a letter is as it is:
//   A fault during the proof (3 to 8, 3 to 7) costs the proof, and the file is read forward; the bytes are right.
//   What was selected anew must have the size it had, so a size that is wrong once is another size later.
//   The count of bytes that a selection claims to have moved interests nobody.
//   The end of the file was found by the read of 10,000 bytes, which has room for one surplus byte, and a kernel lets it pass.
constexpr Reading kReadings[] = {
    {FaultKind::kFail, "TTTTT...TTTTT", "TTTTT..TTTTTTTTT"},
    {FaultKind::kShort, "..t.....tt..t", "..t......tttt..t"},
    {FaultKind::kSurplusOne, "..s.....s...s", "..s......sss...s", ".TT.T...T..TT", ".TT.T...TTTT..TT"},
    {FaultKind::kSurplusTwo, "..s.....ss..s", "..s......ssss..s", ".TT.T...Ts.TT", ".TT.T...TTTTs.TT"},
    {FaultKind::kStall, "TTTTT...TTTTT", "TTTTT..TTTTTTTTT"},
    {FaultKind::kHang, "TTTTT???TTTTT", "TTTTT??TTTTTTTTT"},
    {FaultKind::kSlow, ".............", "................"},
    {FaultKind::kUnplugAtByte, "TTTTTTTTTTTTT", "TTTTTTTTTTTTTTTT"},
    {FaultKind::kLieAboutSize, "ttszzzzzsszzs", "ttszzzzzzsssszzs", "tttzzzzztzzzt", "tttzzzzzztttzzzt"},
    {FaultKind::kWrongCount, ".z..z...oo.zo", ".z..z...z..oo.zo"},
    {FaultKind::kWrongOffset, ".z..z...oo.zo", ".z..z...z..oo.zo"},
    {FaultKind::kUnterminatedName, ".z..z...oo.zo", ".z..z...z..oo.zo"},
    {FaultKind::kEndless, "ssssssssss...", "sssssssssssss...", "sTssTsssss.T.", "sTssTsssTssss.T."},
    {FaultKind::kChanging, "TTzTzzzzTzTzo", "TTzTzzzTzTzTzTzo"},
    {FaultKind::kUpgradeFails, ".............", "................"},
};

}  // namespace

std::size_t CommandsOf(Order order) {
  return order == Order::kAny ? kMovedAny.size() : kMovedForward.size();
}

std::uint64_t BytesBefore(Order order, std::size_t command) {
  std::uint64_t bytes = 0;
  for (std::size_t i = 0; i + 1 < command; ++i) bytes += order == Order::kAny ? kMovedAny[i] : kMovedForward[i];
  return bytes;
}

std::string_view ExpectedReading(Order order, FaultKind fault, Counting counting) {
  for (const Reading& reading : kReadings) {
    if (reading.fault != fault) continue;
    if (counting == Counting::kByKernel) return order == Order::kAny ? reading.anyByKernel : reading.forwardByKernel;
    return order == Order::kAny ? reading.any : reading.forward;
  }
  return "";
}

}  // namespace tests::doors
