#include "vcam/device/Replies.h"

#include <gmock/gmock.h>

#include "vcam/device/SenseCodes.h"
#include "vcam/device/TestSupport.h"

namespace vcam {
namespace {

Command With(Direction direction, std::uint32_t length, std::span<const std::uint8_t> data = {}) {
  Command command;
  command.direction = direction;
  command.length = length;
  command.data = data;
  return command;
}

TEST(Replies, AnswerOnlyAsMuchAsTheHostHasRoomFor) {
  EXPECT_EQ(Answer(With(Direction::kFromCamera, 2), {1, 2, 3}).data, (Bytes{1, 2}));
  EXPECT_EQ(Answer(With(Direction::kFromCamera, 9), {1, 2, 3}).moved, 3U);
  EXPECT_EQ(Answer(With(Direction::kNone, 9), {1, 2, 3}).moved, 0U);
  EXPECT_EQ(Answer(With(Direction::kToCamera, 9), {1, 2, 3}).sense, sense::kBadCommandField);
}

TEST(Replies, TextEndsAtItsNul) {
  const Bytes text{'a', 'b', 0, 'c', 0};
  EXPECT_EQ(TextOf(With(Direction::kToCamera, 5, text)), "ab");
  EXPECT_EQ(TextOf(With(Direction::kToCamera, 2, std::span(text).first(2))), std::nullopt);
  EXPECT_EQ(TextOf(With(Direction::kToCamera, 0)), std::nullopt);
  EXPECT_EQ(TextOf(With(Direction::kNone, 5, text)), std::nullopt);
}

}  // namespace
}  // namespace vcam
