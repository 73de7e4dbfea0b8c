// Shows how far a transfer is, as a bar or as JSON events.
#include "apps/commandline/Progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <optional>

#include "apps/commandline/Printable.h"

namespace apps {
namespace {

constexpr double kLeastElapsed = 0.2;  // seconds; a rate from less is noise

double Rate(const ProgressView& view) {
  return view.elapsed.count() < kLeastElapsed ? 0 : static_cast<double>(view.done) / view.elapsed.count();
}

std::string TimeLeft(double seconds) {
  const auto whole = static_cast<long long>(std::ceil(std::min(seconds, 359'999.0)));
  std::array<char, 32> text{};
  if (whole >= 3600) {
    std::snprintf(text.data(), text.size(), "%lld:%02lld:%02lld left", whole / 3600, whole / 60 % 60, whole % 60);
  } else {
    std::snprintf(text.data(), text.size(), "%lld:%02lld left", whole / 60, whole % 60);
  }
  return text.data();
}

// How much is done, from 0 to 1: of the bytes where they are known, otherwise of the files; nothing when neither is.
std::optional<double> ShareOf(const ProgressView& view) {
  const bool bytes = view.total != 0;
  const auto all = static_cast<double>(bytes ? view.total : view.filesTotal);
  if (all == 0) return std::nullopt;
  return std::min(1.0, static_cast<double>(bytes ? view.done : view.files) / all);
}

std::string Share(const ProgressView& view) {
  const std::optional<double> known = ShareOf(view);
  if (!known) return "";
  const double share = *known;
  constexpr std::size_t kBarWidth = 20;
  const auto filled = static_cast<std::size_t>(share * kBarWidth);
  std::array<char, 16> percent{};
  std::snprintf(percent.data(), percent.size(), " %3d%%", static_cast<int>(share * 100));
  return percent.data() + (" [" + std::string(filled, '#') + std::string(kBarWidth - filled, ' ') + "]");
}

std::string Left(const ProgressView& view) {
  const double share = ShareOf(view).value_or(0);
  if (Rate(view) <= 0 || share <= 0 || share >= 1) return "";
  return "  " + TimeLeft(view.elapsed.count() * (1 - share) / share);
}

std::string Amounts(const ProgressView& view) {
  if (view.shareAlone) return Left(view);
  std::string text = "  " + Bytes(view.done);
  if (view.total != 0) text += " of " + Bytes(view.total);
  const double rate = Rate(view);
  if (rate <= 0) return text;
  return text + "  " + Bytes(static_cast<unsigned long long>(rate)) + "/s" + Left(view);
}

// The first characters of printable text.
std::string Shortened(std::string_view text, std::size_t width) {
  std::string out;
  std::size_t used = 0;
  for (const char c : text) {
    const bool starts = (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    if (starts && used == width) break;
    used += starts ? 1 : 0;
    out += c;
  }
  return out;
}

std::size_t Columns() {
  winsize size{};
  constexpr std::size_t kUsual = 80;
  if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsual;
  return size.ws_col;
}

Json EventMembers(const ProgressView& view) {
  Json members = Json::Object();
  members.Set("what", view.what);
  if (view.shareAlone) return std::move(members.Set("share", ShareOf(view).value_or(0)));
  members.Set("done", view.done);
  if (view.total != 0) members.Set("total", view.total);
  if (view.filesTotal != 0) members.Set("files", view.files).Set("files_total", view.filesTotal);
  if (Rate(view) > 0) members.Set("bytes_per_second", std::round(Rate(view)));
  return members;
}

}  // namespace

std::string ProgressLine(const ProgressView& view, std::size_t columns) {
  const std::string rest = Share(view) + Amounts(view);
  // A line that fills the last column would wrap on some terminals.
  const std::size_t room = columns > rest.size() + 1 ? columns - rest.size() - 1 : 0;
  if (room < 4) return Shortened(Share(view), columns - 1);
  return Shortened(view.what, room) + rest;
}

Progress::Progress(Reporter& reporter, const Stop& stop, std::string_view what, unsigned long long total)
    : reporter_(reporter), stop_(stop), what_(Printable(what)), total_(total), start_(Clock::now()) {}

Progress::~Progress() {
  reporter_.Clear();
}

void Progress::At(unsigned long long done, Clock::time_point now) {
  stop_.Check();
  if (!reporter_.TakeProgressTurn(now)) return;
  const ProgressView view{what_, done, total_, now - start_, files_, filesTotal_, shareAlone_};
  if (reporter_.Style().terminal) reporter_.Overwrite(ProgressLine(view, Columns()));
  if (reporter_.Style().json) reporter_.Event(EventMembers(view));
}

void Progress::AtShare(double share, Clock::time_point now) {
  constexpr unsigned long long kParts = 1000;
  shareAlone_ = true;
  total_ = kParts;
  // A camera may send a value that is not a number. Such a value counts as no progress.
  const double known = share > 0 ? std::min(share, 1.0) : 0;
  At(static_cast<unsigned long long>(known * static_cast<double>(kParts)), now);
}

bool Progress::IsDue(Clock::time_point now) const {
  return (reporter_.Style().terminal || reporter_.Style().json) && reporter_.IsProgressDue(now);
}

void Progress::Name(std::string_view what) {
  what_ = Printable(what);
}

void Progress::Files(unsigned long long done, unsigned long long total) {
  files_ = done;
  filesTotal_ = total;
}

void Progress::Check(void* progress, float) {
  static_cast<Progress*>(progress)->stop_.Check();
}

void Progress::Callback(void* progress, float fraction) {
  auto& self = *static_cast<Progress*>(progress);
  const double share = std::clamp(static_cast<double>(fraction), 0.0, 1.0);
  self.At(static_cast<unsigned long long>(share * static_cast<double>(self.total_)));
}

}  // namespace apps
