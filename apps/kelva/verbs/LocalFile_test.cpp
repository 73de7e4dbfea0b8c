#include "apps/kelva/verbs/LocalFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "apps/commandline/Failure.h"

namespace apps {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string WhyNot(const std::string& path, unsigned long long most) {
  try {
    ReadLocalFile(path, most);
  } catch (const Failure& failure) {
    return failure.what();
  }
  return "read";
}

TEST(LocalFileTest, AFileIsReadWhole) {
  const std::string path = testing::TempDir() + "local-file-test";
  std::ofstream(path) << "abc";
  EXPECT_THAT(ReadLocalFile(path, 3), ElementsAre('a', 'b', 'c'));
  EXPECT_EQ(WhyNot(path, 2), path + " has 3 bytes; a camera takes 2 at most in one file.");
  std::remove(path.c_str());
}

TEST(LocalFileTest, WhatIsNoFileIsRefusedByName) {
  EXPECT_EQ(WhyNot("/nowhere", 1), "Cannot open /nowhere: No such file or directory; check the name.");
  EXPECT_THAT(WhyNot("/tmp", 1), HasSubstr("/tmp is not a regular file"));
  EXPECT_THAT(WhyNot("/dev/zero", 1), HasSubstr("/dev/zero is not a regular file"));
}

}  // namespace
}  // namespace apps
