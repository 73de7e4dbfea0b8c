#ifndef KELVA_APPS_COMMANDLINE_PROGRESS_H_
#define KELVA_APPS_COMMANDLINE_PROGRESS_H_

#include <chrono>
#include <string>
#include <string_view>

#include "apps/commandline/Reporter.h"
#include "apps/commandline/Stop.h"

namespace apps {

/// What a line of progress shows at one moment.
struct ProgressView {
  std::string_view what;  ///< printable: the file
  unsigned long long done;
  unsigned long long total;  ///< 0 when unknown
  std::chrono::duration<double> elapsed;
  /// For several files: how many are done, of how many. Both are 0 for one file.
  unsigned long long files = 0;
  unsigned long long filesTotal = 0;
  bool shareAlone = false;      ///< done and total are not bytes: only their ratio has a meaning
  std::string_view phase = {};  ///< "deleting", for work that has several; not shown while reading
};

/// One line of less than `columns` columns: files, share, bytes, rate, time left, name. The columns stay where they are
/// from one moment to the next, and the name, which comes last, is shortened. With shareAlone no bytes and no rate.
std::string ProgressLine(const ProgressView& view, std::size_t columns);

/// Shows how far a transfer is: a line on a terminal, events in JSON style, nothing elsewhere. It also is the place
/// where a running transfer notices that it has to stop. Used from the thread that transfers.
class Progress {
 public:
  using Clock = std::chrono::steady_clock;

  /// `what` are a camera's bytes; they are made printable here. `total` is in bytes, 0 when unknown.
  Progress(Reporter& reporter, const Stop& stop, std::string_view what, unsigned long long total);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Shows a new state, not more often than eyes (ten a second) or scripts (two a second) can use. Throws Stopped.
  void At(unsigned long long done, Clock::time_point now = Clock::now());

  /// Whether At ever shows something.
  bool IsShown() const;

  /// In place of At, for work that says how much is done, from 0 to 1, and no bytes.
  void AtShare(double share, Clock::time_point now = Clock::now());

  /// Changes the file that is shown.
  void Name(std::string_view what);
  /// For several files: how many are done, of how many.
  void Files(unsigned long long done, unsigned long long total);
  /// Begins a part of the work, with bytes, files and time counted from here: "dates", "reading", "deleting". `total` is
  /// in bytes, 0 when unknown.
  void Phase(std::string_view phase, unsigned long long total = 0);
  /// Another word for the phase: "comparing". Bytes, files and time go on.
  void Now(std::string_view phase) { phase_ = phase; }
  /// Takes the line away.
  void Clear();

  /// The library's progress callback; its context is a Progress.
  static void Callback(void* progress, float fraction);

 private:
  Reporter& reporter_;
  const Stop& stop_;
  std::string what_;
  unsigned long long total_;
  bool shareAlone_ = false;
  unsigned long long files_ = 0;
  unsigned long long filesTotal_ = 0;
  std::string phase_;
  Clock::time_point start_;
};

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_PROGRESS_H_
