#include "apps/commandline/Columns.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

TEST(ColumnsTest, CellsStandBelowEachOther) {
  EXPECT_EQ(Columns({{"SERIAL", "NAME"}, {"K1", "One"}, {"caf\xC3\xA9-77", ""}}),
            "SERIAL   NAME\nK1       One\ncaf\xC3\xA9-77\n");
}

TEST(ColumnsTest, NumbersCanStandToTheRight) {
  EXPECT_EQ(Columns({{"a", "1 B"}, {"b", "10 B"}}, {1}), "a   1 B\nb  10 B\n");
}

TEST(ColumnsTest, NothingIsNothing) {
  EXPECT_EQ(Columns({}), "");
}

}  // namespace
}  // namespace apps
