// Observes cameras and writes what they exchange.
#include "apps/trace/Trace.h"

#include <sys/utsname.h>
#include <unistd.h>

#include <array>
#include <ctime>
#include <optional>
#include <utility>

#include "apps/commandline/Json.h"
#include "apps/trace/Discretion.h"
#include "apps/trace/ExchangeLine.h"
#include "src/wifi/Traced.h"

namespace apps {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kVersion = 1;

std::string System() {
  utsname host{};
  ::uname(&host);
  return std::string(host.sysname) + " " + host.release + " " + host.machine;
}

std::string UtcNow() {
  const std::time_t now = std::time(nullptr);
  std::tm utc{};
  ::gmtime_r(&now, &utc);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &utc);
  return text.data();
}

// The traces that are being written.
struct Traces {
  std::mutex mutex;
  std::vector<Trace*> traces;
};

// Never destroyed: a program may end while a command still runs.
Traces& All() {
  static auto* const all = new Traces;
  return *all;
}

}  // namespace

/// One camera, and where it is in its exchanges.
struct Trace::Observed {
  const int process;
  const int index;
  const std::string serial;
  Discretion discretion{};
  Disclosure disclosure{};
  unsigned long long number = 0;
  std::optional<kelva::Exchange> open{};
  std::chrono::microseconds at{};
  std::string line{};  // of the exchange that has ended

  ExchangePlace Place() const { return {process, index, number, at}; }
};

Trace::Trace(const Wanted& wanted, const Program& program, std::string_view command,
             std::function<void(const std::string&)> complain)
    : file_(wanted.path, std::move(complain)), standIns_(wanted.standIns), start_(Clock::now()) {
  Json header = Json::Object().Set("event", "trace").Set("trace", kVersion);
  header.Set("program", program.name).Set("version", program.version).Set("system", System());
  header.Set("process", ::getpid()).Set("command", command).Set("time", UtcNow()).Set("stand_ins", standIns_);
  file_.Add(header.Text() + "\n");
  file_.Flush();  // before any fork, whose processes would each write it
  const std::scoped_lock lock(All().mutex);
  All().traces.push_back(this);
}

Trace::~Trace() {
  const std::scoped_lock lock(All().mutex);
  std::erase(All().traces, this);
}

void Trace::CutOff() {
  const std::scoped_lock lock(All().mutex);
  for (Trace* trace : All().traces) trace->NameOpen();
}

boost::shared_ptr<Camera> Trace::Around(boost::shared_ptr<Camera> camera, const Device& device) {
  std::shared_ptr<Observed> observed;
  {
    const std::scoped_lock lock(mutex_);
    observed = std::make_shared<Observed>(Observed{::getpid(), static_cast<int>(observed_.size()) + 1, device.serial});
    observed_.push_back(observed);
  }
  Json line = Json::Object().Set("event", "camera").Set("process", observed->process).Set("camera", observed->index);
  standIns_ ? line.Set("serial", Json()) : line.SetBytes("serial", device.serial);
  line.SetBytes("vendor", device.vendor).SetBytes("product", device.product);
  line.SetBytes("revision", device.revision).SetBytes("driver", device.driver);
  file_.Add(line.Text() + "\n");
  file_.Flush();

  const auto since = [this](Clock::time_point when) {
    return std::chrono::duration_cast<std::chrono::microseconds>(when - start_);
  };
  const auto began = [this, observed, since](const kelva::Exchange& exchange) {
    const std::scoped_lock lock(mutex_);
    ++observed->number;
    observed->disclosure = observed->discretion.Begin(exchange.block);
    observed->at = since(Clock::now());
    observed->open = exchange;
  };
  const auto ended = [this, observed](const kelva::Exchange& exchange) {
    {
      const std::scoped_lock lock(mutex_);
      observed->open.reset();
      if (exchange.result == kelva::Exchange::Result::kDone) observed->discretion.Done(exchange.block);
    }
    const std::string* const serial = standIns_ ? &observed->serial : nullptr;
    file_.Add(ExchangeLine(observed->Place(), exchange, observed->disclosure, serial, observed->line),
              exchange.begin + exchange.took);
  };
  return kelva::Traced(std::move(camera), {.ended = ended, .began = began});
}

void Trace::NameOpen() {
  std::string lines;
  {
    const std::scoped_lock lock(mutex_);
    for (const auto& observed : observed_) {
      if (observed->open) lines += UnfinishedLine(observed->Place(), *observed->open, observed->disclosure);
    }
  }
  file_.AddAtEnd(lines);
}

}  // namespace apps
