#include "apps/decoder/Answer.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

using Head = std::span<const std::uint8_t, kAnswerHead>;

std::optional<DrawingOrReason> Decode(const base::Bytes& bytes) {
  return DecodeAnswer(Head(bytes.data(), kAnswerHead), std::span(bytes).subspan(kAnswerHead));
}

/// 2 by 1 pixels, taken at a time, with a complaint.
const base::Bytes kDrawn = {'K', 'T', 'H', 'B', 0,   0,   2,   0,   1,   0,   19,  0,   2,   0,   0,
                            0,   1,   2,   3,   4,   5,   6,   '2', '0', '2', '6', '-', '0', '3', '-',
                            '1', '4', ' ', '1', '5', ':', '0', '9', ':', '2', '6', 'o', 'h'};
const base::Bytes kNotDrawn = {'K', 'T', 'H', 'B', 1, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 'n', 'o'};

TEST(AnswerTest, AnAnswerHasItsBytes) {
  const Drawing drawing{{2, 1, {1, 2, 3, 4, 5, 6}}, "2026-03-14 15:09:26", "oh"};
  EXPECT_EQ(EncodeAnswer(drawing), kDrawn);
  EXPECT_EQ(EncodeAnswer("no"), kNotDrawn);
}

TEST(AnswerTest, AnAnswerIsReadBack) {
  const Drawing drawing = std::get<Drawing>(*Decode(kDrawn));
  EXPECT_EQ(drawing.image.width, 2);
  EXPECT_EQ(drawing.image.height, 1);
  EXPECT_EQ(drawing.image.rgb, (std::vector<std::uint8_t>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(drawing.time, "2026-03-14 15:09:26");
  EXPECT_EQ(drawing.complaint, "oh");
  EXPECT_EQ(std::get<std::string>(*Decode(kNotDrawn)), "no");
}

TEST(AnswerTest, NoOtherBytesAreAnAnswer) {
  // Another magic, kind, or last field; sides of 0 or 401; a time of 18 bytes; a text of 1,000.
  for (const auto& [at, value] :
       {std::pair<std::size_t, int>{0, 'X'}, {4, 2}, {14, 1}, {6, 0}, {8, 0}, {7, 2}, {9, 2}, {10, 18}, {13, 4}}) {
    base::Bytes bytes = kDrawn;
    bytes[at] = static_cast<std::uint8_t>(value);
    EXPECT_EQ(SizeAfter(Head(bytes.data(), kAnswerHead)), std::nullopt) << at;
    EXPECT_EQ(Decode(bytes), std::nullopt) << at;
  }
  base::Bytes silent = kNotDrawn;
  silent[12] = 0;
  EXPECT_EQ(SizeAfter(Head(silent.data(), kAnswerHead)), std::nullopt);
  base::Bytes longer = kDrawn;
  longer.push_back(0);
  EXPECT_EQ(Decode(longer), std::nullopt);
  base::Bytes untimely = kDrawn;
  untimely[22] = '<';
  EXPECT_EQ(Decode(untimely), std::nullopt);
}

TEST(AnswerTest, TextsOfAnAnswerArePrintable) {
  base::Bytes bytes = kNotDrawn;
  bytes[16] = 0x1B;
  EXPECT_EQ(std::get<std::string>(*Decode(bytes)).find('\x1B'), std::string::npos);
}

}  // namespace
}  // namespace apps
