#include <algorithm>
#include <limits>

#include "tests/doors/Table.h"

// What each fault makes of a row. The results of commands that fail are the same through every door; the faults that make
// a camera claim another number of bytes are not, because a kernel stands between.

namespace tests::doors {
namespace {

using vcam::FaultKind;

constexpr std::uint8_t kSurplus = 0xEE;
constexpr int kWrongCount = 0x7FFFFFFF;
constexpr int kWrongOffset = 0x7FFFFFF0;

// Sense key, code and qualifier behind a check condition; a halted pipe is host status 7.
constexpr const char* kRefused = "ret=0x00000000 result.status=0x00440402";
constexpr const char* kTooMuchData = "ret=0x00000000 result.status=0x00240502";
constexpr const char* kHalted = "ret=0x00000000 result.status=0x000007ff";
constexpr const char* kTimedOut = "ret=0xe00002d6 result.status=0xffffffff";
constexpr const char* kGone = "ret=0xe00002c0 result.status=0xffffffff";

Outcome Failure(const char* error) {
  return {error, 0, {}};
}

int SizeOf(const Bytes& bytes) {
  return static_cast<int>(bytes.size());
}

Outcome Clean(const Row& row) {
  return {"", row.command.asked != 0 ? SizeOf(row.answer) : SizeOf(row.command.sent), row.answer};
}

/// The camera moves what it should and claims `moved` bytes. A kernel believes a claim of less; one of more than was asked
/// for makes a residue that cannot be, and with it nothing moved.
Outcome Claiming(const Row& row, Counting counting, int moved) {
  Outcome outcome = Clean(row);
  if (counting == Counting::kAsTold) {
    outcome.moved = moved;
    return outcome;
  }
  const int asked = row.command.asked != 0 ? static_cast<int>(row.command.asked) : SizeOf(row.command.sent);
  const bool believed = moved >= 0 && moved <= asked;
  outcome.moved = believed ? std::min(outcome.moved, moved) : 0;
  outcome.data.resize(std::min(outcome.data.size(), static_cast<std::size_t>(outcome.moved)));
  return outcome;
}

/// So many bytes more than the answer, or a claim of more where there is no answer.
Outcome WithMore(const Row& row, Counting counting, int more) {
  if (row.answer.empty()) return Claiming(row, counting, Clean(row).moved + more);
  Outcome outcome = Clean(row);
  outcome.moved += more;
  outcome.data.insert(outcome.data.end(), static_cast<std::size_t>(more), kSurplus);
  const bool fits = outcome.data.size() <= row.command.asked;
  if (!fits && counting == Counting::kByKernel) return Failure(kTooMuchData);
  if (!fits) outcome.data.resize(row.command.asked);
  return outcome;
}

Outcome WithOneLess(const Row& row, Counting counting) {
  if (row.answer.empty()) return Claiming(row, counting, Clean(row).moved - 1);
  Outcome outcome = Clean(row);
  outcome.data.pop_back();
  --outcome.moved;
  return outcome;
}

void Put(Bytes& data, std::size_t at, int value) {
  for (std::size_t i = 0; i < 4; ++i) data.at(at + i) = static_cast<std::uint8_t>(value >> (8 * i));
}

Outcome WithNumbers(const Row& row, Counting counting, std::vector<std::size_t> places, int value) {
  if (row.answer.empty()) return Claiming(row, counting, value);
  if (places.empty()) places = {0};
  Outcome outcome = Clean(row);
  for (const std::size_t place : places) Put(outcome.data, place, value);
  return outcome;
}

Outcome WithoutNuls(const Row& row, Counting counting) {
  if (row.answer.empty()) return Claiming(row, counting, Clean(row).moved - 1);
  Outcome outcome = Clean(row);
  if (row.nuls.empty()) std::replace(outcome.data.begin(), outcome.data.end(), std::uint8_t{0}, std::uint8_t{'A'});
  for (const std::size_t nul : row.nuls) outcome.data.at(nul) = 'A';
  return outcome;
}

Outcome WithoutEnd(const Row& row, Counting counting) {
  if (!row.isPiece) return WithMore(row, counting, 1);
  Outcome outcome = Clean(row);
  outcome.data.resize(row.command.asked, kSurplus);
  outcome.moved = static_cast<int>(row.command.asked);
  // The console log says that there is more.
  if (row.command.block[0] == 0xC6) outcome.data.at(4) = 1;
  return outcome;
}

Outcome WithAnotherAnswer(const Row& row) {
  if (row.answer.empty()) return Failure(kRefused);
  Outcome outcome = Clean(row);
  ++outcome.data.front();
  return outcome;
}

Outcome WithALie(const Row& row, Counting counting) {
  const bool isSize = row.command.block == Bytes{0xC6, 0, 0x00};
  if (!isSize) return Claiming(row, counting, Clean(row).moved + 7);
  return {"", 4, {0x8B, 2, 0, 0}};  // 651 instead of 644
}

}  // namespace

Outcome Expected(const Row& row, FaultKind fault, Counting counting) {
  switch (fault) {
    case FaultKind::kFail:
      return Failure(kRefused);
    case FaultKind::kShort:
      return WithOneLess(row, counting);
    case FaultKind::kSurplusOne:
      return WithMore(row, counting, 1);
    case FaultKind::kSurplusTwo:
      return WithMore(row, counting, 2);
    case FaultKind::kStall:
      return Failure(kHalted);
    case FaultKind::kHang:
      return Failure(kTimedOut);
    case FaultKind::kSlow:
      return Clean(row);
    case FaultKind::kUnplugAtByte:
      return Failure(kGone);
    case FaultKind::kLieAboutSize:
      return WithALie(row, counting);
    case FaultKind::kWrongCount:
      return WithNumbers(row, counting, row.counts, kWrongCount);
    case FaultKind::kWrongOffset:
      return WithNumbers(row, counting, row.offsets, kWrongOffset);
    case FaultKind::kUnterminatedName:
      return WithoutNuls(row, counting);
    case FaultKind::kEndless:
      return WithoutEnd(row, counting);
    case FaultKind::kChanging:
      return WithAnotherAnswer(row);
    case FaultKind::kUpgradeFails:
      return Clean(row);
  }
  return {};
}

}  // namespace tests::doors
