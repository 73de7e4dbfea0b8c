#ifndef KELVA_DARWIN_UDEV_SURROUNDINGS_H_
#define KELVA_DARWIN_UDEV_SURROUNDINGS_H_

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

namespace darwin::udev {

/// What the tracker asks of the process around it, and what a test answers in its place.
class Surroundings {
 public:
  virtual ~Surroundings() = default;
  /// Milliseconds of a clock that never goes back.
  virtual std::int64_t NowMs() = 0;
  virtual void SleepMs(int milliseconds) = 0;
  /// 0 when this user may read and write the node, otherwise why not, as an errno value. Never opens the node: that
  /// would disturb a program that works with the camera.
  virtual int WhyNotUsable(const std::string& node) = 0;
  /// Receives one sentence for the user or the journal.
  virtual void Report(const std::string& sentence) = 0;
};

/// Receives sentences, on any thread.
using SentenceHandler = std::function<void(const std::string&)>;

/// This process itself; reports go to standard error, which the journal keeps for an agent, or to a function of the
/// caller's.
class ProcessSurroundings : public Surroundings {
 public:
  explicit ProcessSurroundings(SentenceHandler report = {}) : report_(std::move(report)) {}
  std::int64_t NowMs() override;
  void SleepMs(int milliseconds) override;
  int WhyNotUsable(const std::string& node) override;
  void Report(const std::string& sentence) override;

 private:
  SentenceHandler report_;
};

}  // namespace darwin::udev

#endif  // KELVA_DARWIN_UDEV_SURROUNDINGS_H_
