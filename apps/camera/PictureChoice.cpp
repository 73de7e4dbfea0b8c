// Picks pictures of the catalogue by date and folder.
#include "apps/camera/PictureChoice.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <ctime>
#include <string_view>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Meant.h"
#include "apps/camera/Picture.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/Words.h"
#include "base/Ascii.h"

namespace apps {
namespace {

// What this computer's clock showed some hours, days or weeks ago: "12h", "7d", "2w". Nothing for another text.
std::optional<std::string> TimeAgo(const std::string& text) {
  constexpr std::time_t kHour = 3600;
  std::time_t count = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  if (error != std::errc() || end + 1 != text.data() + text.size() || count < 0 || count > 100'000) return std::nullopt;
  const std::time_t unit = *end == 'h' ? kHour : *end == 'd' ? 24 * kHour : *end == 'w' ? 7 * 24 * kHour : 0;
  if (unit == 0) return std::nullopt;
  const std::time_t then = std::max<std::time_t>(std::time(nullptr) - count * unit, 0);
  std::tm parts{};
  std::array<char, 32> out{};
  ::localtime_r(&then, &parts);
  return std::string(out.data(), std::strftime(out.data(), out.size(), "%Y-%m-%d %H:%M:%S", &parts));
}

// Whether the start of a date in one of the shapes below, "2026-02" or longer, names a day and a time that there is.
bool IsInCalendar(const std::string& text) {
  const auto number = [&text](std::size_t at, int missing) {
    return at < text.size() ? std::stoi(text.substr(at, 2)) : missing;
  };
  const std::chrono::year_month_day day{std::chrono::year(std::stoi(text.substr(0, 4))),
                                        std::chrono::month(static_cast<unsigned>(number(5, 1))),
                                        std::chrono::day(static_cast<unsigned>(number(8, 1)))};
  return day.ok() && number(11, 0) < 24 && number(14, 0) < 60 && number(17, 0) < 60;
}

// "2026-03-14T15:09" as the catalogue writes it. Dates in this form sort as texts do.
std::string StartOfADate(std::string text) {
  constexpr std::array<std::string_view, 5> kShapes = {"0000", "0000-00", "0000-00-00", "0000-00-00 00:00",
                                                       "0000-00-00 00:00:00"};
  if (auto ago = TimeAgo(text)) return std::move(*ago);
  constexpr std::size_t kBlank = kShapes[2].size();
  if (text.size() > kBlank && text[kBlank] == 'T') text[kBlank] = ' ';
  for (const std::string_view shape : kShapes) {
    if (base::HasShape(text, shape) && IsInCalendar(text)) return text;
  }
  throw Failure(ExitCode::kUsage,
                "--since takes a date such as 2026, 2026-03-14 or '2026-03-14 15:09', or 12h, 7d, 2w, not \"" +
                    Printable(text) + "\".");
}

// The name of a folder below DCIM, also of its path as it is printed, or with a slash behind it.
std::string NameOfFolder(std::string typed) {
  while (typed.ends_with('/')) typed.pop_back();
  const SplitPath split = Split(ToCameraPath(typed));
  return SameName(split.folder, "I:\\DCIM") ? split.name : typed;
}

}  // namespace

PictureChoice::PictureChoice(const Context& context)
    : since_(context.call.Value("since")), folder_(context.call.Value("folder")) {
  if (folder_) folder_ = NameOfFolder(*folder_);
  if (since_) since_ = StartOfADate(*since_);
}

bool PictureChoice::IsInFolder(const DcfObj& picture) const {
  return IsInFolder(PictureFolder(picture));
}

bool PictureChoice::IsInFolder(const std::string& folder) const {
  return !folder_ || (!folder.empty() && (SameName(*folder_, folder) || MatchesName(*folder_, folder)));
}

void PictureChoice::NoteMissingFolder(const std::vector<DcfObj>& pictures, const Context& context) const {
  const auto isInFolder = [this](const DcfObj& picture) { return IsInFolder(picture); };
  if (!folder_ || std::any_of(pictures.begin(), pictures.end(), isInFolder)) return;
  context.reporter.Note("No folder of the camera's pictures is named " + Printable(*folder_) + ".");
}

void PictureChoice::Apply(std::vector<DcfObj>& pictures, Context& context) const {
  NoteMissingFolder(pictures, context);
  std::size_t undated = 0;
  std::erase_if(pictures, [&](const DcfObj& picture) {
    if (!IsInFolder(picture)) return true;
    if (!since_) return false;
    const auto time = PictureTime(picture);
    undated += time ? 0U : 1U;
    return !IsSince(time);
  });
  if (undated == 0) return;
  context.reporter.Note(Counted(undated, "picture") + (undated == 1 ? " has" : " have") +
                        " no date in the catalogue and " + (undated == 1 ? "was" : "were") + " left out.");
}

}  // namespace apps
