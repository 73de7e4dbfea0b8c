#include "apps/kelva/verbs/Secret.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Output.h"
#include "base/FileDescriptor.h"
#include "base/SendAll.h"

namespace apps {
namespace {

// Standard input that holds a text.
class Input {
 public:
  explicit Input(const std::string& text) : saved_(::dup(STDIN_FILENO)) {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    base::WriteAll(ends[1], text);
    ::close(ends[1]);
    ::dup2(ends[0], STDIN_FILENO);
    ::close(ends[0]);
  }
  ~Input() { ::dup2(saved_.Get(), STDIN_FILENO); }
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;

 private:
  base::FileDescriptor saved_;
};

TEST(SecretTest, TheFirstLineOfAPipeIsTheSecret) {
  const Input input("open sesame\r\nmore\n");
  const Stop stop;
  EXPECT_EQ(ReadSecret("? ", stop), "open sesame");
}

TEST(SecretTest, TheProcessThatHoldsItLeavesNoCoreDump) {
  // In a process of its own, because there is no way back.
  const auto read = [] {
    const Input input("open sesame\n");
    const Stop stop;
    ReadSecret("? ", stop);
    rlimit core{1, 1};
    ::getrlimit(RLIMIT_CORE, &core);
    std::_Exit(::prctl(PR_GET_DUMPABLE) == 0 && core.rlim_cur == 0 && core.rlim_max == 0 ? 0 : 1);
  };
  EXPECT_EXIT(read(), ::testing::ExitedWithCode(0), "");
}

TEST(SecretTest, NothingIsAnError) {
  const Input input("");
  const Stop stop;
  EXPECT_THROW(ReadSecret("? ", stop), Failure);
}

TEST(SecretTest, ARequestToStopEndsTheWait) {
  const Input input("x");
  Stop stop;
  stop.Request();
  EXPECT_THROW(ReadSecret("? ", stop), Stopped);
}

}  // namespace
}  // namespace apps
