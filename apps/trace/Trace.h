#ifndef KELVA_APPS_TRACE_TRACE_H_
#define KELVA_APPS_TRACE_TRACE_H_

#include <boost/shared_ptr.hpp>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "apps/commandline/Program.h"
#include "apps/trace/TraceFile.h"
#include "src/wifi/Camera.h"

namespace apps {

/// Writes what a program exchanges with its cameras into a file, as docs/trace.md describes it. Outlives the cameras that
/// Around gave. Any thread, and every process that a fork makes.
class Trace {
 public:
  struct Wanted {
    std::string path;
    bool standIns = false;  ///< in place of serial numbers and network names
  };
  /// What a camera is called. The camera's bytes, not to be trusted.
  struct Device {
    std::string serial;
    std::string vendor;
    std::string product;
    std::string revision;
    std::string driver;
  };

  /// Opens the file and writes the first line. Throws Failure. `complain` as in TraceFile.
  Trace(const Wanted& wanted, const Program& program, std::string_view command,
        std::function<void(const std::string& sentence)> complain);
  ~Trace();
  Trace(const Trace&) = delete;
  Trace& operator=(const Trace&) = delete;

  /// A camera around this one whose exchanges are written.
  boost::shared_ptr<Camera> Around(boost::shared_ptr<Camera> camera, const Device& device);
  /// In every trace of this process: names the commands that have begun and not ended. For a program that ends without
  /// waiting for them, nor for a thread that sits in a write.
  static void CutOff();
  /// Both as in TraceFile.
  void Flush() noexcept { file_.Flush(); }
  std::string Contents(std::size_t most) { return file_.Contents(most); }

 private:
  struct Observed;

  void NameOpen();

  TraceFile file_;
  const bool standIns_;
  const std::chrono::steady_clock::time_point start_;
  std::mutex mutex_;
  std::vector<std::shared_ptr<Observed>> observed_;
};

}  // namespace apps

#endif  // KELVA_APPS_TRACE_TRACE_H_
