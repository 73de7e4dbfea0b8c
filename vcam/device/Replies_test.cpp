#include "vcam/device/Replies.h"

#include <gmock/gmock.h>

#include "vcam/camera/testing/TestSupport.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

wire::Command With(wire::Direction direction, std::uint32_t length, std::span<const std::uint8_t> data = {}) {
  wire::Command command;
  command.direction = direction;
  command.length = length;
  command.data = data;
  return command;
}

TEST(Replies, AnswerOnlyAsMuchAsTheHostHasRoomFor) {
  EXPECT_EQ(Answer(With(wire::Direction::kFromCamera, 2), {1, 2, 3}).data, (base::Bytes{1, 2}));
  EXPECT_EQ(Answer(With(wire::Direction::kFromCamera, 9), {1, 2, 3}).moved, 3U);
  EXPECT_EQ(Answer(With(wire::Direction::kNone, 9), {1, 2, 3}).moved, 0U);
  EXPECT_EQ(Answer(With(wire::Direction::kToCamera, 9), {1, 2, 3}).sense, sense::kBadCommandField);
}

TEST(Replies, TextEndsAtItsNul) {
  const base::Bytes text{'a', 'b', 0, 'c', 0};
  EXPECT_EQ(TextOf(With(wire::Direction::kToCamera, 5, text)), "ab");
  EXPECT_EQ(TextOf(With(wire::Direction::kToCamera, 2, std::span(text).first(2))), std::nullopt);
  EXPECT_EQ(TextOf(With(wire::Direction::kToCamera, 0)), std::nullopt);
  EXPECT_EQ(TextOf(With(wire::Direction::kNone, 5, text)), std::nullopt);
}

}  // namespace
}  // namespace vcam
