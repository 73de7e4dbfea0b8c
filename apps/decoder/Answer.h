#ifndef KELVA_APPS_DECODER_ANSWER_H_
#define KELVA_APPS_DECODER_ANSWER_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>

#include "apps/decoder/Pixels.h"
#include "base/Bytes.h"

// What the process that decodes pictures tells the one that started it. A picture may have taken that process over, so
// every number and every byte of an answer is checked.

namespace apps {

/// The longer side of a thumbnail: sharp at twice the size at which the sheet shows most of them.
inline constexpr int kThumbnailSide = 400;
/// The longer side of a picture that is shown large: as many pixels as most screens have.
inline constexpr int kLargeSide = 1600;
/// The largest file that is drawn.
inline constexpr std::size_t kLargestPicture = std::size_t{256} << 20;

/// A small, upright picture of a JPEG file.
struct Drawing {
  Pixels image;
  std::optional<std::string> time;  ///< when the picture was taken, where the file says so
  std::string complaint;            ///< empty, or what is damaged in a picture that could be drawn in part
};
/// A drawing, or why there is none, as the end of a sentence.
using DrawingOrReason = std::variant<Drawing, std::string>;

/// Set in the size of a request: the start of a file comes, and its EXIF thumbnail is asked for.
inline constexpr std::uint64_t kStartOnly = std::uint64_t{1} << 62;
/// Set in the size of a request: the picture is to be shown large.
inline constexpr std::uint64_t kShownLarge = std::uint64_t{1} << 61;
/// Set in the size of a request: only the time is asked for, and no pixel is decoded.
inline constexpr std::uint64_t kTimeOnly = std::uint64_t{1} << 63;
/// The size of the answer to such a request: "2026-03-14 15:09:26", or as many zeros.
inline constexpr std::size_t kTimeAnswer = 19;
base::Bytes EncodeTime(const std::optional<std::string>& time);
/// Nothing for another text than a time.
std::optional<std::string> DecodeTime(std::span<const std::uint8_t, kTimeAnswer> answer);

/// An answer begins with a head of this size; it says how many bytes follow.
inline constexpr std::size_t kAnswerHead = 16;
base::Bytes EncodeAnswer(const DrawingOrReason& answer);
/// The size of what follows a head; nothing for a head that no answer has. `longest` was asked for.
std::optional<std::size_t> SizeAfter(std::span<const std::uint8_t, kAnswerHead> head, int longest = kThumbnailSide);
/// The answer of a head that SizeAfter has accepted and exactly as many bytes; nothing when it is no answer. Texts are
/// printable.
std::optional<DrawingOrReason> DecodeAnswer(std::span<const std::uint8_t, kAnswerHead> head,
                                            std::span<const std::uint8_t> rest, int longest = kThumbnailSide);

}  // namespace apps

#endif  // KELVA_APPS_DECODER_ANSWER_H_
