#include <array>
#include <chrono>
#include <cstdio>
#include <optional>

#include "tests/kernel/cases/Card.h"
#include "tests/kernel/cases/Cases.h"
#include "tests/kernel/cases/Command.h"
#include "tests/kernel/cases/Plugged.h"

// Throughput beside the shortest possible way to the same bytes, in the time of the guest, which counts instructions: the
// ratios are exact and the same in every run; the rates say nothing about a real cable.

namespace {

using tap::Check;
using tap::Note;

constexpr const char* kSerial = "P1";
constexpr std::uint32_t kSize = 32U << 20;
constexpr const char* kLarge = "I:\\DCIM\\100ABCDE\\IMG_0009.RAW";

constexpr double kTransferToBare = 0.97;
constexpr double kTransferToSgDd = 0.97;
constexpr double kGetToSgDd = 0.95;

double NumberAfter(const std::string& text, const std::string& word) {
  const std::size_t at = text.find(word);
  Check(at != std::string::npos, "there is no \"" + word + "\" in: " + text);
  return std::stod(text.substr(at + word.size()));
}

double SecondsOf(const std::vector<std::string>& words) {
  const auto begin = std::chrono::steady_clock::now();
  const Outcome outcome = RunProgram(words);
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
  Check(outcome.code == 0, words[0] + ": " + outcome.output);
  return took.count();
}

void Compare(const std::string& what, double reference, double ours, double least) {
  std::array<char, 160> line{};
  const double ratio = reference / ours;
  std::snprintf(line.data(), line.size(), "%s: %.3f (at least %.2f); %.4f s against %.4f s", what.c_str(), ratio, least,
                ours, reference);
  Note(line.data());
  Check(ratio >= least, "too slow");
}

// A camera with one large file, which is the selected one.
struct Rig {
  Rig() {
    card.Put("DCIM/100ABCDE/IMG_0009.RAW", kSize);
    plugged.emplace(card.Inserted(kSerial));
    const Outcome read = RunProgram({"kelva-kernel-client", kSerial, "read", kLarge});
    Check(read.LastLine().ends_with(" " + std::to_string(kSize)), read.output);
  }
  Card card{"speed"};
  std::optional<Plugged> plugged{};
};

double ClientSeconds(const std::vector<std::string>& arguments) {
  std::vector<std::string> words{"kelva-kernel-client", kSerial};
  words.insert(words.end(), arguments.begin(), arguments.end());
  const Outcome outcome = RunProgram(words);
  return NumberAfter(outcome.output, "nanoseconds ") / 1e9;
}

void CompareWithBareLoop() {
  Rig rig;
  const std::string size = std::to_string(kSize);
  const double bare = ClientSeconds({"bare", size, rig.plugged->node()});
  const double ours = ClientSeconds({"chunks", size});
  Compare("64 KiB reads through OsxCamera::Transfer against a bare SG_IO loop", bare, ours, kTransferToBare);
}

void CompareWithSgDd() {
  Rig rig;
  const Outcome dd = RunProgram({"sg_dd", "if=" + rig.plugged->node(), "of=/dev/null", "bs=512", "bpt=128", "time=1"});
  const double ours = ClientSeconds({"chunks", std::to_string(kSize)});
  Compare("64 KiB reads through OsxCamera::Transfer against sg_dd bpt=128",
          NumberAfter(dd.output, "time to transfer data: "), ours, kTransferToSgDd);
}

void CompareGetWithSgDd() {
  Rig rig;
  const double dd = SecondsOf({"sg_dd", "if=" + rig.plugged->node(), "of=/tmp/by-sg-dd", "bs=512", "bpt=128"});
  const double get = SecondsOf({"kelva", "get", "--serial", kSerial, "--quiet", kLarge, "-o", "/tmp/by-kelva"});
  const Outcome same = RunProgram({"cmp", "/tmp/by-sg-dd", "/tmp/by-kelva"});
  Check(same.code == 0, same.output);
  Compare("kelva get to tmpfs against sg_dd to tmpfs, whole programs", dd, get, kGetToSgDd);
}

double CopySeconds(const char* operation) {
  return ClientSeconds({operation, std::to_string(kSize)});
}

void NoteCost(const char* what, double seconds) {
  std::array<char, 120> line{};
  constexpr double kChunks = kSize / 65'536.0;
  std::snprintf(line.data(), line.size(), "%7.0f ns  %s", seconds / kChunks * 1e9, what);
  Note(line.data());
}

// What one chunk of 64 KiB costs on its way from the device to the vector that a program gets.
void AccountForCopies() {
  Rig rig;
  const std::string size = std::to_string(kSize);
  const double bare = ClientSeconds({"bare", size, rig.plugged->node()});
  const double mapped = ClientSeconds({"mapped", size, rig.plugged->node()});
  const double transfers = ClientSeconds({"chunks", size});
  const double copies = CopySeconds("copies");
  const double gathering = CopySeconds("gathering");
  const double file = ClientSeconds({"whole-file", kLarge});
  NoteCost("SG_IO, data left in the kernel's mapped buffer", mapped);
  NoteCost("SG_IO, data copied by the kernel", bare);
  NoteCost("of this the kernel's copy", bare - mapped);
  NoteCost("OsxCamera::Transfer, data copied by the library", transfers);
  NoteCost("of this above the mapped SG_IO", transfers - mapped);
  NoteCost("a copy of a chunk by itself", copies);
  NoteCost("a copy of a chunk to the end of a vector by itself", gathering);
  NoteCost("of this the memory that is new to the process", gathering - copies);
  NoteCost("ReadFile, handed over as one vector", file);
  // No copy that is not accounted for: a twentieth is left for selecting the file and asking its size.
  Check(file <= 1.05 * (transfers + gathering), "ReadFile costs more than its parts");
}

}  // namespace

std::vector<tap::Case> SpeedCases() {
  return {{"64 KiB reads are as fast as a bare SG_IO loop", CompareWithBareLoop},
          {"64 KiB reads are as fast as sg_dd", CompareWithSgDd},
          {"kelva get is nearly as fast as sg_dd", CompareGetWithSgDd},
          {"each copy of a file is accounted for", AccountForCopies}};
}
