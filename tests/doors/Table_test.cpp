#include "tests/doors/Table.h"

#include <gmock/gmock.h>

#include <set>
#include <utility>

namespace tests::doors {
namespace {

using vcam::FaultKind;

bool Same(const Outcome& a, const Outcome& b) {
  return a.error == b.error && a.moved == b.moved && a.data == b.data;
}

TEST(Table, HasARowForEveryOperationOfTheRegister) {
  std::set<std::pair<int, int>> registered{{0xC1, -1}, {0xC3, 0x00}, {0xC4, 0x00}, {0xC4, 0x01}, {0xC5, -1}};
  for (const int action : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 0xFE, 0xFF}) registered.emplace(0xC0, action);
  for (const int selection : {0, 1, 2, 3, 5, 6, 7, 8}) registered.emplace(0xC2, selection);
  for (const int query : {0, 1, 2, 3, 4, 5, 6, 7}) registered.emplace(0xC6, query);
  std::set<std::pair<int, int>> rows;
  for (const Row& row : Rows()) {
    const Bytes& block = row.command.block;
    const bool hasNumber = block[0] == 0xC1 || block[0] == 0xC5;
    rows.emplace(block[0], hasNumber ? -1 : block.size() > 2 ? block[2] : 0);
  }
  EXPECT_EQ(rows, registered);
  EXPECT_EQ(Rows().size(), 45U);
}

// The camera whose upgrade fails says so in its status later, and a slow one is late.
TEST(Table, EveryOtherFaultShowsAtEveryCommand) {
  for (const FaultKind fault : vcam::AllFaults()) {
    if (fault == FaultKind::kUpgradeFails || fault == FaultKind::kSlow) continue;
    for (const Row& row : Rows()) {
      const Outcome clean = Expected(row, FaultKind::kUpgradeFails, Counting::kAsTold);
      EXPECT_EQ(clean.error, "");
      EXPECT_FALSE(Same(Expected(row, fault, Counting::kAsTold), clean)) << row.name << ", " << vcam::NameOf(fault);
    }
  }
}

TEST(Table, AKernelBelievesNoClaimOfMoreThanWasAskedFor) {
  for (const FaultKind fault : vcam::AllFaults()) {
    for (const Row& row : Rows()) {
      const Outcome outcome = Expected(row, fault, Counting::kByKernel);
      EXPECT_GE(outcome.moved, 0) << row.name;
      EXPECT_LE(static_cast<std::size_t>(outcome.moved), row.command.asked + row.command.sent.size()) << row.name;
    }
  }
}

}  // namespace
}  // namespace tests::doors
