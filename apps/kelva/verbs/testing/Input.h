#ifndef KELVA_APPS_KELVA_VERBS_TESTING_INPUT_H_
#define KELVA_APPS_KELVA_VERBS_TESTING_INPUT_H_

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <string>

#include "base/FileDescriptor.h"
#include "base/SendAll.h"
#include "platform/Sockets.h"

namespace apps {

/// Standard input that holds a text.
class Input {
 public:
  explicit Input(const std::string& text) : saved_(::dup(STDIN_FILENO)) {
    std::array<int, 2> ends{};
    EXPECT_EQ(platform::Pipe(ends), 0);
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

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_TESTING_INPUT_H_
