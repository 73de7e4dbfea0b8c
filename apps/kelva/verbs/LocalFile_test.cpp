#include "apps/kelva/verbs/LocalFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "apps/commandline/Failure.h"

namespace apps {
namespace {

using testing::HasSubstr;

std::string WhyNot(const std::string& path, std::uint32_t most) {
  try {
    const LocalFile file(path, most);
  } catch (const Failure& failure) {
    return failure.what();
  }
  return "read";
}

class LocalFileTest : public testing::Test {
 protected:
  LocalFileTest() { std::ofstream(path_) << "abcdefg"; }
  ~LocalFileTest() override { std::remove(path_.c_str()); }

  static std::string Next(LocalFile& file, std::size_t size) {
    std::string text(size, '?');
    file.Read(text);
    return text;
  }

  const std::string path_ = testing::TempDir() + "local-file-test";
};

TEST_F(LocalFileTest, AFileIsReadPieceByPiece) {
  LocalFile file(path_, 7);
  EXPECT_EQ(file.Size(), 7U);
  EXPECT_EQ(file.Head(2), "ab");
  EXPECT_EQ(file.Head(100), "abcdefg");
  EXPECT_EQ(Next(file, 3), "abc");
  EXPECT_EQ(file.Sha1(), "2fb5e13419fc89246865e7a324f476ec624e8740") << "of the whole file";
  EXPECT_EQ(Next(file, 4), "defg");
  EXPECT_EQ(WhyNot(path_, 6), path_ + " has 7 bytes; a camera takes 6 at most in one file.");
}

TEST_F(LocalFileTest, AFileThatBecomesShorterIsAnError) {
  LocalFile file(path_, 7);
  EXPECT_EQ(Next(file, 3), "abc");
  ASSERT_EQ(::truncate(path_.c_str(), 5), 0);
  try {
    Next(file, 4);
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_THAT(failure.what(), HasSubstr("became shorter while it was read"));
  }
}

TEST_F(LocalFileTest, WhatIsNoFileIsRefusedByName) {
  EXPECT_EQ(WhyNot("/nowhere", 1), "Cannot open /nowhere: No such file or directory; check the name.");
  EXPECT_THAT(WhyNot("/tmp", 1), HasSubstr("/tmp is not a regular file"));
  EXPECT_THAT(WhyNot("/dev/zero", 1), HasSubstr("/dev/zero is not a regular file"));
}

}  // namespace
}  // namespace apps
