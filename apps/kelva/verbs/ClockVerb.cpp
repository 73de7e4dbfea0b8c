// The verb time.
#include <array>
#include <cmath>
#include <cstdio>
#include <string>

#include "apps/camera/Clock.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/kelva/verbs/Verbs.h"
#include "base/Hex.h"

namespace apps {
namespace {

bool InUtc(Context& context) {
  const std::string zone = context.call.Value("zone").value_or("utc");
  if (zone != "utc" && zone != "local") {
    throw Failure(ExitCode::kUsage, "--zone is \"utc\" or \"local\", not \"" + Printable(zone) + "\".");
  }
  return zone == "utc";
}

ClockTime TimeToSet(const std::string& text, bool utc) {
  if (text == "now") return HostClock(utc, std::chrono::system_clock::now());
  const auto time = ReadIso(text);
  if (!time) {
    throw Failure(ExitCode::kUsage, "--set takes \"now\" or a time like 2026-11-21T14:30:00, not \"" + Printable(text) +
                                        "\"; the zone is chosen with --zone.");
  }
  return *time;
}

std::string Difference(double seconds) {
  constexpr double kShown = 0.05;  // less is 0.0
  if (std::fabs(seconds) < kShown) return "in step with this computer";
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%.1f s %s this computer", std::fabs(seconds),
                seconds < 0 ? "behind" : "ahead of");
  return text.data();
}

std::string_view Bytes14(const _VscCdbTime& record) {
  return {reinterpret_cast<const char*>(record.bytes), sizeof record.bytes};
}

ExitCode ShowUnknown(Context& context, const Session& camera, const _VscCdbTime& record) {
  const std::string hex = base::Hex(Bytes14(record));
  context.Result(CameraResult(camera).Set("time", Json()).Set("record", hex), hex + "\n");
  context.reporter.Note("The camera's clock is not a valid time; its 14 bytes are shown in hexadecimal.");
  return ExitCode::kDone;
}

ExitCode ShowTime(Context& context, const Session& camera, bool utc) {
  const _VscCdbTime record = camera->GetTime();
  const auto now = std::chrono::system_clock::now();
  const auto host = HostClock(utc, now);
  const auto time = DecodeClock(record);
  if (!time) return ShowUnknown(context, camera, record);
  const double ahead = std::chrono::duration<double>(*time - host).count();
  Json members = CameraResult(camera).Set("time", IsoText(*time)).Set("zone", utc ? "utc" : "local");
  members.Set("seconds_ahead", ahead).Set("computer", HostTimeText(utc, now)).Set("record", base::Hex(Bytes14(record)));
  return context.Result(std::move(members), IsoText(*time) + "; taken as " + (utc ? "UTC" : "local time") + ", " +
                                                Difference(ahead) + " (" + HostTimeText(utc, now) + ")\n");
}

// Never sends a camera a record in a layout that may not be its own.
void SetClock(Camera& camera, const std::string& wanted, bool utc) {
  const _VscCdbTime record = camera.GetTime();
  if (!DecodeClock(record)) {
    throw Failure(ExitCode::kFailed,
                  "The camera's clock is no time in the layout that this tool knows (its 14 bytes are " +
                      base::Hex(Bytes14(record)) + "), so it was not set; set it in the camera's menu.");
  }
  // Only now, so that the time spent on asking is not lost.
  camera.SetTime(EncodeClock(TimeToSet(wanted, utc)));
}

ExitCode RunTime(Context& context) {
  const bool utc = InUtc(context);
  const auto wanted = context.call.Value("set");
  if (wanted) {
    TimeToSet(*wanted, utc);  // a wrong time is an error before the camera is opened
  }
  const Session camera(context, wanted ? "set the camera's clock" : "read the camera's clock");
  if (wanted) SetClock(*camera, *wanted, utc);
  return ShowTime(context, camera, utc);
}

constexpr Option kOptions[] = {
    {"set", 0, "now|TIME", "Set the clock to this computer's time or to a time like 2026-11-21T14:30:00.",
     Offer::kWords, "now"},
    {"zone", 0, "utc|local", "The zone in which the camera's clock is kept; utc unless given.", Offer::kWords,
     "utc local"},
};
constexpr Example kExamples[] = {
    {"kelva time", "Show the clock and how far it is off."},
    {"kelva time --set now", "Set it to this computer's time, in UTC."},
    {"kelva time --set now --zone local", "Set it to the time on the wall."},
};

constexpr Verb kVerbs[] = {
    {"time", "Show or set the camera's clock", kNoArguments, kOptions,
     R"(The camera's clock has no time zone. The tool takes it as UTC, or as local time with --zone local, both to
compare and to set it. It prints the camera's time without a zone, and this computer's with its own.

The camera sends a record of 14 bytes, read here as seven little-endian 16-bit numbers from year to millisecond. A
record that is not a valid time in this layout is shown in hexadecimal, and such a clock is not set. After setting, the clock is read back and
shown.)",
     R"(time: text without a zone; null if the record is not a valid time
zone: utc or local, as the time was read
seconds_ahead: how far the camera is ahead of this computer
computer: this computer's time then, with its zone
record: the 14 bytes in hexadecimal)",
     kExamples, RunTime}};

}  // namespace

std::span<const Verb> ClockVerbs() {
  return kVerbs;
}

}  // namespace apps
