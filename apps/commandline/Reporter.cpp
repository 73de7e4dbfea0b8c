// Standard error: messages, the progress line, JSON events.
#include "apps/commandline/Reporter.h"

#include <poll.h>
#include <unistd.h>

#include <cstdlib>
#include <utility>

#include "apps/commandline/Output.h"
#include "base/SendAll.h"

namespace apps {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view kEraseLine = "\r\x1b[K";

bool IsSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

}  // namespace

ReportStyle StyleFor(int fd, bool json, bool quiet) {
  const char* term = std::getenv("TERM");
  const bool dumb = term == nullptr || std::string_view(term) == "dumb" || *term == '\0';
  const bool terminal = ::isatty(fd) == 1 && !dumb && !json;
  return {json, quiet, terminal, terminal && !IsSet("NO_COLOR")};
}

std::string EventLine(std::string_view event, Json members) {
  return Json::Object().Set("schema", kJsonSchema).Set("event", event).Merge(std::move(members)).Text() + "\n";
}

void Reporter::Write(std::string_view text) {
  std::string whole;
  if (std::exchange(lineShown_, false)) whole = kEraseLine;
  whole += text;
  // A failure of standard error cannot be reported anywhere.
  base::WriteAll(fd_, whole);
}

void Reporter::Note(std::string_view sentence) {
  if (!style_.quiet) Remark(sentence);
}

void Reporter::Ask(std::string_view sentence) {
  Remark(sentence);
}

void Reporter::Remark(std::string_view sentence) {
  const std::scoped_lock lock(mutex_);
  if (style_.json) return Write(EventLine("note", Json::Object().Set("message", sentence)));
  Write(std::string(program_) + ": " + std::string(sentence) + "\n");
}

std::string Reporter::Line(std::string_view sentence, ExitCode code) const {
  if (style_.json) {
    return EventLine(
        "error",
        Json::Object().Set("exit", static_cast<int>(code)).Set("reason", WordOf(code)).Set("message", sentence));
  }
  const std::string name = std::string(program_) + ":";
  return (style_.colour ? "\x1b[1;31m" + name + "\x1b[0m " : name + " ") + std::string(sentence) + "\n";
}

void Reporter::Error(std::string_view sentence, ExitCode code) {
  const std::scoped_lock lock(mutex_);
  Write(Line(sentence, code));
}

void Reporter::Overwrite(std::string_view line) {
  if (!style_.terminal || style_.quiet) return;
  const std::scoped_lock lock(mutex_);
  Write(lineShown_ ? std::string(line) : std::string(kEraseLine) + std::string(line));
  lineShown_ = true;
}

void Reporter::AwaitCamera(bool awaited) {
  const auto now = std::chrono::steady_clock::now();
  const std::scoped_lock lock(mutex_);
  asked_ = awaited ? std::optional(now) : std::nullopt;
  if (std::exchange(complained_, false) && lineShown_) Write("");
}

void Reporter::Tick(std::chrono::steady_clock::time_point now) {
  constexpr auto kPatience = 5s;
  // This thread also looks at signals and the time-out, so it waits neither for another thread nor for a blocked terminal.
  const std::unique_lock lock(mutex_, std::try_to_lock);
  if (!lock || !style_.terminal || style_.quiet || !asked_ || now - *asked_ < kPatience) return;
  pollfd ready{fd_, POLLOUT, 0};
  if (::poll(&ready, 1, 0) != 1) return;
  const auto silent = std::chrono::duration_cast<std::chrono::seconds>(now - *asked_).count();
  Write((lineShown_ ? "" : std::string(kEraseLine)) + "No answer from the camera for " + std::to_string(silent) +
        " s; check the cable. Ctrl-C stops.");
  lineShown_ = true;
  complained_ = true;
}

void Reporter::Event(Json members) {
  if (!style_.json || style_.quiet) return;
  const std::scoped_lock lock(mutex_);
  Write(EventLine("progress", std::move(members)));
}

void Reporter::Forward(std::string_view line) {
  const std::scoped_lock lock(mutex_);
  Write(std::string(line) + "\n");
}

bool Reporter::TakeProgressTurn(std::chrono::steady_clock::time_point now) {
  const std::scoped_lock lock(mutex_);
  if (now < nextProgress_) return false;
  nextProgress_ = now + (style_.json ? 500ms : 100ms);
  return true;
}

void Reporter::Clear() {
  const std::scoped_lock lock(mutex_);
  if (lineShown_) Write("");
}

void Reporter::LastWord(std::string_view sentence, ExitCode code) {
  pollfd ready{fd_, POLLOUT, 0};
  constexpr int kPatienceMs = 100;
  if (::poll(&ready, 1, kPatienceMs) != 1) return;
  const std::string start = style_.terminal ? std::string(kEraseLine) : std::string();
  base::WriteAll(fd_, start + Line(sentence, code));
}

}  // namespace apps
