// From plugging a camera in to the first line of the desktop application, beside a bare posix_spawn of the same program.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "benchmarks/Processes.h"
#include "bus/BusConnection.h"

namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

constexpr int kPlugs = 200;
constexpr int kOpeners = 1000;
constexpr double kMilli = 1e6;
const char* const kSerial = "KV-0001";

fs::path BuildFolder() {
  return fs::read_symlink("/proc/self/exe").parent_path().parent_path();
}

fs::path StampProgram() {
  return BuildFolder() / "bench-aid" / "bench-stamp";
}

/// What a plug is timed to: the start of the application, or that of the opener, in whose place the stamp then stands.
enum class Until { kApplication, kOpener };

/// The bus, the helper and a desktop whose only application is the stamp.
class Desk {
 public:
  explicit Desk(Until until = Until::kApplication) : stamps_(scratch_ / KELVA_DESKTOP_ID) {
    fs::create_directories(scratch_ / "storage");
    fs::create_directories(scratch_ / "data" / "applications");
    fs::create_directories(scratch_ / "runtime");
    std::ofstream(scratch_ / "data" / "applications" / KELVA_DESKTOP_ID ".desktop")
        << "[Desktop Entry]\nType=Application\nName=Stamp\nExec=" << StampProgram().string() << " "
        << (scratch_ / KELVA_DESKTOP_ID).string() << "\n";
    setenv("XDG_DATA_HOME", (scratch_ / "data").c_str(), 1);
    setenv("XDG_RUNTIME_DIR", (scratch_ / "runtime").c_str(), 1);
    server_.emplace(std::vector<std::string>{BuildFolder() / "bin" / "kelva-vcam", "serve", "--socket", Socket()});
    Connect();
    helper_.emplace(std::vector<std::string>{Helper(until), "--virtual", Socket()});
    AwaitHelper();
  }

  ~Desk() { fs::current_path(BuildFolder()); }
  Desk(const Desk&) = delete;
  Desk& operator=(const Desk&) = delete;

  /// Nanoseconds from the request to the application's start; nothing when it did not start.
  std::optional<std::int64_t> PlugOnce(std::chrono::milliseconds patience) {
    bus::PlugRequest request;
    request.serial = kSerial;
    request.storage = (scratch_ / "storage").string();
    request.peripheralType = 3;
    const std::int64_t start = bench::Now();
    connection_->Request(bus::Kind::kPlug, bus::Encode(request));
    const std::optional<std::int64_t> stamp = stamps_.Next(patience);
    connection_->Request(bus::Kind::kUnplug, bus::EncodeText(kSerial));
    return stamp ? std::optional(*stamp - start) : std::nullopt;
  }

 private:
  /// The helper runs the opener that lies beside it, and gives it the desktop id first: the stamp finds the pipe under
  /// that name in the folder that both run in.
  fs::path Helper(Until until) const {
    const fs::path built = BuildFolder() / "bin" / "kelva-helper";
    if (until == Until::kApplication) return built;
    fs::copy_file(built, scratch_ / "kelva-helper");
    fs::create_symlink(StampProgram(), scratch_ / "kelva-open");
    fs::current_path(scratch_ / "");
    return scratch_ / "kelva-helper";
  }

  std::string Socket() const { return (scratch_ / "bus").string(); }

  void Connect() {
    for (int turn = 0; turn < 200 && !connection_; ++turn) {
      try {
        connection_.emplace(Socket());
      } catch (const std::runtime_error&) {
        std::this_thread::sleep_for(20ms);
      }
    }
    if (!connection_) throw std::runtime_error("kelva-vcam did not serve the bus");
  }

  /// A camera that is there when the helper starts launches nothing, so the first launch shows that it listens.
  void AwaitHelper() {
    for (int turn = 0; turn < 20; ++turn) {
      if (PlugOnce(500ms)) return;
    }
    throw std::runtime_error("kelva-helper started nothing");
  }

  bench::ScratchFolder scratch_;
  bench::StampPipe stamps_;
  std::optional<bench::Child> server_;
  std::optional<bus::BusConnection> connection_;
  std::optional<bench::Child> helper_;
};

double Percentile(std::vector<std::int64_t> times, std::size_t percent) {
  std::sort(times.begin(), times.end());
  return static_cast<double>(times[(times.size() - 1) * percent / 100]) / kMilli;
}

/// Runs `measure` for every iteration; each one gives nanoseconds, or nothing for a failure.
template <typename Measure>
void Collect(benchmark::State& state, Measure measure) {
  std::vector<std::int64_t> times;
  for (auto _ : state) {
    const std::optional<std::int64_t> time = measure();
    if (!time) {
      state.SkipWithError("the application did not start within ten seconds");
      return;
    }
    state.SetIterationTime(static_cast<double>(*time) / 1e9);
    times.push_back(*time);
    // A person plugs no faster; without it, one launch would be measured while the one before still ends.
    std::this_thread::sleep_for(20ms);
  }
  state.counters["p50_ms"] = Percentile(times, 50);
  state.counters["p99_ms"] = Percentile(times, 99);
}

void PlugToStart(benchmark::State& state) {
  Desk desk;
  Collect(state, [&] { return desk.PlugOnce(10s); });
}

void PlugToOpener(benchmark::State& state) {
  Desk desk(Until::kOpener);
  Collect(state, [&] { return desk.PlugOnce(10s); });
}

void BareSpawn(benchmark::State& state) {
  const bench::ScratchFolder scratch;
  const bench::StampPipe stamps(scratch / "stamps");
  Collect(state, [&]() -> std::optional<std::int64_t> {
    const std::int64_t start = bench::Now();
    bench::Child child({StampProgram(), scratch / "stamps"});
    const std::optional<std::int64_t> stamp = stamps.Next(10s);
    child.Join();
    return stamp ? std::optional(*stamp - start) : std::nullopt;
  });
}

BENCHMARK(PlugToStart)->Iterations(kPlugs)->Repetitions(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(PlugToOpener)->Iterations(kOpeners)->Repetitions(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BareSpawn)->Iterations(kPlugs)->Repetitions(1)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
