#include "apps/trace/CommandName.h"

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string>

namespace apps {
namespace {

TEST(CommandName, IsThatOfTheRegister) {
  EXPECT_EQ(CommandName({{0xC0, 0, 0x00}}), "capture");
  EXPECT_EQ(CommandName({{0xC0, 0, 0x0A}}), "set passphrase 1");
  EXPECT_EQ(CommandName({{0xC1, 0, 0x00, 0x10}}), "begin upgrade");
  EXPECT_EQ(CommandName({{0xC1, 0, 0x77}}), "begin upgrade");
  EXPECT_EQ(CommandName({{0xC2, 0, 0x01}}), "select file");
  EXPECT_EQ(CommandName({{0xC2, 0, 0x01, 0x01}}), "select file to write");
  EXPECT_EQ(CommandName({{0xC4, 0, 0x01, 0x00, 0x00, 0x01}}), "read chunk");
  EXPECT_EQ(CommandName({{0xC5, 0, 0x00, 0x00, 0x01}}), "write chunk");
  EXPECT_EQ(CommandName({{0xC6, 0, 0x07}}), "controls");
}

TEST(CommandName, ACodeOfNoCommandIsUnknown) {
  for (const _VscCdb& block :
       {_VscCdb{}, _VscCdb{{0xBF}}, _VscCdb{{0xC7}}, _VscCdb{{0xC0, 0, 0x0E}}, _VscCdb{{0xC2, 0, 4}},
        _VscCdb{{0xC3, 0, 1}}, _VscCdb{{0xC4, 0, 2}}, _VscCdb{{0xC6, 0, 8}}}) {
    EXPECT_EQ(CommandName(block), "unknown");
  }
}

TEST(CommandName, EveryCommandHasItsOwn) {
  std::set<std::string> names;
  int known = 0;
  for (const unsigned char operation : std::to_array<unsigned char>({0xC0, 0xC2, 0xC3, 0xC4, 0xC6})) {
    for (int subCode = 0; subCode < 256; ++subCode) {
      const std::string_view name = CommandName({{operation, 0, static_cast<unsigned char>(subCode)}});
      if (name == "unknown") continue;
      ++known;
      names.emplace(name);
    }
  }
  EXPECT_EQ(known, 35);
  EXPECT_EQ(names.size(), 35U);
}

}  // namespace
}  // namespace apps
