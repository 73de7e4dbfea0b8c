#include "apps/commandline/StdoutDiversion.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <optional>
#include <string>

#include "apps/commandline/Output.h"
#include "base/SendAll.h"
#include "base/testing/UnnamedFile.h"

namespace apps {
namespace {

class StdoutDiversionTest : public testing::Test {
 protected:
  StdoutDiversionTest() {
    std::fflush(stdout);
    saved_ = base::FileDescriptor(::dup(STDOUT_FILENO));
    ::dup2(page_.Get(), STDOUT_FILENO);
    diversion_.emplace();
  }
  ~StdoutDiversionTest() override {
    diversion_.reset();
    ::dup2(saved_.Get(), STDOUT_FILENO);
  }

  base::FileDescriptor page_{base::test::UnnamedFile()};
  base::FileDescriptor saved_;
  std::optional<StdoutDiversion> diversion_;
};

TEST_F(StdoutDiversionTest, WhatALibraryPrintsIsTakenAndNotSeen) {
  std::printf("FAILED = 0x%x\n", 0x2c2U);
  std::cout << "and this" << std::endl;
  EXPECT_EQ(diversion_->Taken(), "FAILED = 0x2c2\nand this\n");
  EXPECT_EQ(::lseek(page_.Get(), 0, SEEK_END), 0);
}

TEST_F(StdoutDiversionTest, WhatWaitedInTheBufferBeforeIsNotTaken) {
  diversion_.reset();
  std::printf("the program's own");
  diversion_.emplace();
  EXPECT_EQ(diversion_->Taken(), "");
  EXPECT_EQ(::lseek(page_.Get(), 0, SEEK_END), 17);
}

TEST_F(StdoutDiversionTest, EachLineIsTakenOnce) {
  std::printf("one\n");
  EXPECT_EQ(diversion_->Taken(), "one\n");
  EXPECT_EQ(diversion_->Taken(), "");
  std::printf("two\n");
  EXPECT_EQ(diversion_->Taken(), "two\n");
}

TEST_F(StdoutDiversionTest, ALibraryThatNeverEndsToPrintIsNotWaitedForAndNothingOfItIsSeen) {
  for (int i = 0; i < 100'000; ++i)
    std::printf("%d%s\n", i, std::string(static_cast<std::size_t>(i % 50), '.').c_str());
  EXPECT_EQ(diversion_->Taken().substr(0, 6), "0\n1.\n2");
  EXPECT_EQ(diversion_->Taken(), "");
  for (int i = 0; i < 100'000; ++i) std::printf("%d\n", i);
  diversion_.reset();
  std::fflush(stdout);
  EXPECT_EQ(::lseek(page_.Get(), 0, SEEK_END), 0);
}

TEST_F(StdoutDiversionTest, ResultsReachTheRealOutput) {
  EXPECT_EQ(base::WriteAll(diversion_->Real(), "result\n"), 0);
  EXPECT_EQ(::lseek(page_.Get(), 0, SEEK_END), 7);
}

}  // namespace
}  // namespace apps
