#include "tests/protocol/Player.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

Player::Player(std::vector<Step> steps) : steps_(std::move(steps)) {}

Player::~Player() {
  EXPECT_EQ(next_, steps_.size()) << "the example has steps that the library does not take";
}

bool Player::Transfer(const _VscCdb& cdb, int direction, int& size, char* buffer, bool) {
  if (next_ == steps_.size()) {
    ADD_FAILURE() << "the library takes a step that the example does not have";
    return false;
  }
  const Step& step = steps_[next_++];
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(cdb.bytes), sizeof(cdb.bytes)), step.cdb) << "step " << next_;
  EXPECT_EQ(direction, step.direction) << "step " << next_;
  EXPECT_EQ(size, step.size) << "step " << next_;
  if (direction == 1) {
    EXPECT_EQ(std::string(buffer, static_cast<std::size_t>(size)), step.data) << "step " << next_;
  }
  if (direction == 2) {
    std::copy_n(step.data.begin(), std::min(step.data.size(), static_cast<std::size_t>(size)), buffer);
    size = static_cast<int>(step.data.size());
  }
  return true;
}
