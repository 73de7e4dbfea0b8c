// Shows how far a transfer is, as a line or as JSON events.
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

std::string Format(const char* format, auto... values) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), format, values...);
  return text.data();
}

// "31 s left", "2 min 05 s left", "2 h 46 min left".
std::string TimeLeft(double seconds) {
  const auto whole = static_cast<long long>(std::ceil(std::min(seconds, 359'999.0)));
  if (whole >= 3600) return Format("%lld h %02lld min left", whole / 3600, whole / 60 % 60);
  if (whole >= 60) return Format("%lld min %02lld s left", whole / 60, whole % 60);
  return Format("%lld s left", whole);
}

// How much is done, from 0 to 1: of the bytes where they are known, otherwise of the files; nothing when neither is.
std::optional<double> ShareOf(const ProgressView& view) {
  const bool bytes = view.total != 0;
  const auto all = static_cast<double>(bytes ? view.total : view.filesTotal);
  if (all == 0) return std::nullopt;
  return std::min(1.0, static_cast<double>(bytes ? view.done : view.files) / all);
}

std::string Left(const ProgressView& view) {
  const double share = ShareOf(view).value_or(0);
  if (Rate(view) <= 0 || share <= 0 || share >= 1) return "";
  return TimeLeft(view.elapsed.count() * (1 - share) / share);
}

// Cut or filled to a width, so that what follows does not jump from one moment to the next.
std::string Filled(const std::string& text, std::size_t width, bool right = true) {
  const std::string blanks(width - std::min(width, text.size()), ' ');
  return right ? blanks + text : text + blanks;
}

std::string Counted(const ProgressView& view) {
  const std::string total = std::to_string(view.filesTotal);
  return view.filesTotal == 0 ? "" : Filled(std::to_string(view.files), total.size()) + "/" + total + "  ";
}

std::string Share(const ProgressView& view) {
  const std::optional<double> known = ShareOf(view);
  return known ? Format("%3d %%", static_cast<int>(*known * 100)) : "";
}

// "163 MB": without a fraction where three digits are there already.
std::string Rounded(double bytes) {
  std::string text = Bytes(static_cast<unsigned long long>(bytes));
  const std::size_t point = text.find('.');
  if (point == 3) text.erase(point, 2);
  return text;
}

std::string Amounts(const ProgressView& view) {
  if (view.shareAlone) return "";
  const std::string done = Filled(Bytes(view.done), std::string_view("999.9 MB").size());
  if (view.total != 0 && view.filesTotal == 0) return "  " + done + " of " + Bytes(view.total);
  return "  " + done;
}

std::string Speed(const ProgressView& view) {
  const double rate = Rate(view);
  const std::string text = view.shareAlone || rate <= 0 ? "" : Rounded(rate) + "/s";
  return view.shareAlone ? "" : "  " + Filled(text, std::string_view("99.9 MB/s").size());
}

std::string TimeColumn(const ProgressView& view) {
  if (!ShareOf(view)) return "";
  return "  " + Filled(Left(view), std::string_view("2 min 05 s left").size());
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
  if (view.filesTotal != 0) {
    members.Set("file", view.what).Set("index", view.files);
    members.Set("files", view.files).Set("files_total", view.filesTotal);
  }
  if (!view.phase.empty()) members.Set("phase", view.phase);
  if (Rate(view) > 0) members.Set("bytes_per_second", std::round(Rate(view)));
  return members;
}

}  // namespace

std::string ProgressLine(const ProgressView& view, std::size_t columns) {
  const bool named = !view.phase.empty() && view.phase != "reading";
  const std::string start = (named ? std::string(view.phase) + "  " : "") + Counted(view) + Share(view);
  std::string line = start + Amounts(view) + Speed(view) + TimeColumn(view);
  // A line that fills the last column would wrap on some terminals.
  if (line.size() >= columns) line = start;
  if (line.size() + 2 < columns) line += "  " + std::string(view.what);
  // Without count and share nothing stands before the bytes.
  if (start.empty()) line.erase(0, line.find_first_not_of(' '));
  return Shortened(line, columns - 1);
}

Progress::Progress(Reporter& reporter, const Stop& stop, std::string_view what, unsigned long long total)
    : reporter_(reporter), stop_(stop), what_(Printable(what)), total_(total), start_(Clock::now()) {}

Progress::~Progress() {
  reporter_.Clear();
}

void Progress::At(unsigned long long done, Clock::time_point now) {
  stop_.Check();
  if (!reporter_.TakeProgressTurn(now)) return;
  const ProgressView view{what_, done, total_, now - start_, files_, filesTotal_, shareAlone_, phase_};
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

bool Progress::IsShown() const {
  return reporter_.Style().terminal || reporter_.Style().json;
}

void Progress::Name(std::string_view what) {
  what_ = Printable(what);
}

void Progress::Files(unsigned long long done, unsigned long long total) {
  files_ = done;
  filesTotal_ = total;
}

void Progress::Phase(std::string_view phase, unsigned long long total) {
  phase_ = phase;
  total_ = total;
  files_ = 0;
  filesTotal_ = 0;
  start_ = Clock::now();
}

void Progress::Clear() {
  reporter_.Clear();
}

void Progress::Callback(void* progress, float fraction) {
  auto& self = *static_cast<Progress*>(progress);
  const double share = std::clamp(static_cast<double>(fraction), 0.0, 1.0);
  self.At(static_cast<unsigned long long>(share * static_cast<double>(self.total_)));
}

}  // namespace apps
