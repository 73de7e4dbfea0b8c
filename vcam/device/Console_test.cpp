#include "vcam/device/Console.h"

#include <gmock/gmock.h>

namespace vcam {
namespace {

TEST(Console, GivesItsTextOnceInOrder) {
  Console console;
  console.Log("one");
  console.Log("two");
  EXPECT_EQ(console.Take(5), "one\nt");
  EXPECT_FALSE(console.Empty());
  EXPECT_EQ(console.Take(100), "wo\n");
  EXPECT_TRUE(console.Empty());
}

TEST(Console, MasksControlCharacters) {
  Console console;
  console.Log("a\x1B[2Jb\nc");
  EXPECT_EQ(console.Take(100), "a?[2Jb?c\n");
}

TEST(Console, DropsTheOldestLinesWhenNobodyReads) {
  Console console;
  console.Log("first");
  for (int i = 0; i < 300; ++i) console.Log(std::string(1023, 'x'));
  const std::string text = console.Take(Console::kCapacity * 2);
  EXPECT_LE(text.size(), Console::kCapacity);
  EXPECT_EQ(text.find("first"), std::string::npos);
  EXPECT_EQ(text.size() % 1024, 0U);
}

TEST(Console, HoldsAsMuchAsItsCapacityAndThenDropsAWholeLine) {
  Console console;
  for (std::size_t i = 0; i < Console::kCapacity / 1024; ++i)
    console.Log(std::string(1023, static_cast<char>('a' + i % 26)));
  console.Log("");
  const std::string text = console.Take(Console::kCapacity * 2);
  EXPECT_EQ(text.size(), Console::kCapacity - 1024 + 1);
  EXPECT_EQ(text.substr(0, 1024), std::string(1023, 'b') + "\n");
}

TEST(Console, LosesNothingUpToItsCapacity) {
  Console console;
  for (std::size_t i = 0; i < Console::kCapacity / 1024; ++i) console.Log(std::string(1023, 'x'));
  EXPECT_EQ(console.Take(Console::kCapacity * 2).size(), Console::kCapacity);
}

TEST(Console, CutsALineThatIsLongerThanTheLog) {
  Console console;
  console.Log(std::string(Console::kCapacity * 2, 'x'));
  EXPECT_EQ(console.Take(Console::kCapacity * 4).size(), Console::kCapacity / 2 + 1);
}

}  // namespace
}  // namespace vcam
