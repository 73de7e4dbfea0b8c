#ifndef KELVA_TESTS_UMOCKDEV_AGENT_UNDER_TEST_H_
#define KELVA_TESTS_UMOCKDEV_AGENT_UNDER_TEST_H_

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/testing/ScratchFolder.h"
#include "tests/umockdev/MockMachine.h"

namespace mock {

/// The agent as an unmodified process on a mock machine, with an opener that counts. To be made after the machine.
class AgentUnderTest {
 public:
  /// Starts the agent. `before` are the words of a command that runs it, such as a tracer.
  explicit AgentUnderTest(const std::vector<std::string>& before = {});
  ~AgentUnderTest();
  AgentUnderTest(const AgentUnderTest&) = delete;
  AgentUnderTest& operator=(const AgentUnderTest&) = delete;

  /// Plugs a camera in and out until the agent notices one, so that it is known to listen. False when it never does.
  bool AwaitListening(MockMachine& machine);
  /// When the next opener started to run, in nanoseconds of the monotonic clock; nothing when none does in time.
  std::optional<std::int64_t> AwaitLaunch(int milliseconds);
  /// Ends the agent as a session does; true when it ended in order.
  bool End();

  pid_t Process() const { return process_; }
  std::size_t OpenDescriptors() const;
  std::size_t Threads() const;
  /// A line of the kernel's account of the agent's memory in KiB: "Rss", "Pss", "Private_Dirty".
  long MemoryKib(const std::string& line) const;
  /// Voluntary and involuntary context switches of all threads so far.
  long ContextSwitches() const;

 private:
  void Start(const std::vector<std::string>& before);
  std::filesystem::path Proc() const { return "/proc/" + std::to_string(process_); }

  const base::ScratchFolder scratch_;
  const std::filesystem::path folder_ = scratch_.Path();
  int launches_ = -1;
  pid_t process_ = 0;
};

}  // namespace mock

#endif  // KELVA_TESTS_UMOCKDEV_AGENT_UNDER_TEST_H_
