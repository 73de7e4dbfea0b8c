// What is told of a drawing, in bytes. Apart from the drawing itself, so that who only reads answers links no decoder.
#include "apps/decoder/Answer.h"

#include "apps/commandline/Printable.h"
#include "base/Ascii.h"

namespace apps {
namespace {

// "KTHB"
constexpr std::uint32_t kMagic = 0x4248544B;
constexpr std::uint16_t kDrawn = 0;
constexpr std::uint16_t kNotDrawn = 1;
constexpr std::size_t kTimeSize = kTimeAnswer;
constexpr char kTimeShape[] = "0000-00-00 00:00:00";
constexpr std::size_t kLongestText = 400;

/// The fields of a head, in their order.
struct Head {
  std::uint32_t magic;
  std::uint16_t kind;
  std::uint16_t width;
  std::uint16_t height;
  std::uint16_t timeSize;
  std::uint16_t textSize;
  std::uint16_t zero;

  std::size_t Pixels() const { return std::size_t{width} * height * 3; }
};

Head ReadHead(std::span<const std::uint8_t, kAnswerHead> bytes) {
  return {base::Load<std::uint32_t>(bytes, 0),  base::Load<std::uint16_t>(bytes, 4),
          base::Load<std::uint16_t>(bytes, 6),  base::Load<std::uint16_t>(bytes, 8),
          base::Load<std::uint16_t>(bytes, 10), base::Load<std::uint16_t>(bytes, 12),
          base::Load<std::uint16_t>(bytes, 14)};
}

bool IsSound(const Head& head, int longest) {
  if (head.magic != kMagic || head.zero != 0 || head.textSize > kLongestText) return false;
  if (head.kind == kNotDrawn) return head.width == 0 && head.height == 0 && head.timeSize == 0 && head.textSize != 0;
  return head.kind == kDrawn && head.width >= 1 && head.height >= 1 && head.width <= longest &&
         head.height <= longest && (head.timeSize == 0 || head.timeSize == kTimeSize);
}

base::Bytes Encode(std::uint16_t kind, const Pixels& image, const std::string& time, const std::string& text) {
  const std::string shown = text.substr(0, kLongestText);
  base::Bytes bytes;
  base::Append(bytes, kMagic, kind, static_cast<std::uint16_t>(image.width), static_cast<std::uint16_t>(image.height),
               static_cast<std::uint16_t>(time.size()), static_cast<std::uint16_t>(shown.size()), std::uint16_t{0});
  bytes.insert(bytes.end(), image.rgb.begin(), image.rgb.end());
  base::AppendText(bytes, time + shown);
  return bytes;
}

std::string TextOf(std::span<const std::uint8_t> bytes) {
  return {bytes.begin(), bytes.end()};
}

}  // namespace

base::Bytes EncodeAnswer(const DrawingOrReason& answer) {
  if (const auto* reason = std::get_if<std::string>(&answer)) return Encode(kNotDrawn, {}, "", *reason);
  const Drawing& drawing = std::get<Drawing>(answer);
  return Encode(kDrawn, drawing.image, drawing.time.value_or(""), drawing.complaint);
}

base::Bytes EncodeTime(const std::optional<std::string>& time) {
  base::Bytes bytes;
  base::AppendText(bytes, time.value_or(""));
  bytes.resize(kTimeAnswer);
  return bytes;
}

std::optional<std::string> DecodeTime(std::span<const std::uint8_t, kTimeAnswer> answer) {
  std::string time = TextOf(answer);
  if (!base::HasShape(time, kTimeShape)) return std::nullopt;
  return time;
}

std::optional<std::size_t> SizeAfter(std::span<const std::uint8_t, kAnswerHead> bytes, int longest) {
  const Head head = ReadHead(bytes);
  if (!IsSound(head, longest)) return std::nullopt;
  return head.Pixels() + head.timeSize + head.textSize;
}

std::optional<DrawingOrReason> DecodeAnswer(std::span<const std::uint8_t, kAnswerHead> bytes,
                                            std::span<const std::uint8_t> rest, int longest) {
  const Head head = ReadHead(bytes);
  if (SizeAfter(bytes, longest) != rest.size()) return std::nullopt;
  const std::string text = Printable(TextOf(rest.subspan(head.Pixels() + head.timeSize)));
  if (head.kind == kNotDrawn) return text;
  const auto pixels = rest.first(head.Pixels());
  Drawing drawing{{head.width, head.height, {pixels.begin(), pixels.end()}}, {}, text};
  if (head.timeSize == 0) return drawing;
  drawing.time = TextOf(rest.subspan(head.Pixels(), kTimeSize));
  if (!base::HasShape(*drawing.time, kTimeShape)) return std::nullopt;
  return drawing;
}

}  // namespace apps
