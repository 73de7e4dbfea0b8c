#include "apps/kelva/verbs/Secret.h"

#include <fcntl.h>
#include <gtest/gtest.h>
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
