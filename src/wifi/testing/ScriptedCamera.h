#ifndef KELVA_WIFI_TESTING_SCRIPTED_CAMERA_H_
#define KELVA_WIFI_TESTING_SCRIPTED_CAMERA_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <deque>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

#include "CameraError.h"
#include "testing/Bytes.h"
#include "testing/PlainCamera.h"

namespace wifi_testing {

/// One expected call of `Transfer` and what comes of it. Chained: Expect({0xC6, 0, 4}).Asks(4).Answers({1, 0, 0, 0}).
class Step {
 public:
  explicit Step(std::initializer_list<int> leadingBytes) {
    std::transform(leadingBytes.begin(), leadingBytes.end(), cdb_.begin(),
                   [](int value) { return static_cast<unsigned char>(value); });
  }

  // What is expected. Without any of these: direction 0, size 0, no buffer, flag true.
  Step& Asks(int size) { return Phase(2, size, true); }
  Step& Sends(const std::string& bytes) { return Phase(1, static_cast<int>(bytes.size()), true, bytes); }
  /// No data phase, and yet a buffer that holds these bytes.
  Step& Holds(const std::string& bytes) { return Phase(0, static_cast<int>(bytes.size()), true, bytes); }
  Step& Flag(bool flag) {
    flag_ = flag;
    return *this;
  }

  // What comes of it. Without any of these: true, and the size written back is what was sent (0 without a data phase).
  Step& Answers(std::string bytes) {
    answer_ = std::move(bytes);
    return *this;
  }
  Step& Answers(std::initializer_list<int> bytes) { return Answers(Bytes(bytes)); }
  /// The size written back, whatever was moved.
  Step& Moves(int size) {
    moved_ = size;
    return *this;
  }
  /// Returns false, after moving what is to be moved.
  Step& ReturnsFalse() {
    result_ = false;
    return *this;
  }
  /// Returns false with size and buffer untouched.
  Step& Fails() {
    untouched_ = true;
    return ReturnsFalse();
  }
  /// Runs at the end of the transfer; may throw.
  Step& Then(std::function<void()> action) {
    action_ = std::move(action);
    return *this;
  }
  Step& Throws(const std::string& message) {
    return Then([message] { throw CameraTransferError(message); });
  }

  int direction() const { return direction_; }
  int size() const { return size_; }
  const std::string& answer() const { return answer_; }

  std::string Block() const { return {cdb_.begin(), cdb_.end()}; }

  void Check(const _VscCdb& cdb, int direction, int size, const char* buffer, bool flag) const {
    EXPECT_EQ(Hex(Block()), Hex(std::string(cdb.bytes, cdb.bytes + 16)));
    EXPECT_EQ(direction_, direction);
    EXPECT_EQ(size_, size);
    EXPECT_EQ(buffer_, buffer != nullptr);
    EXPECT_EQ(flag_, flag);
    if (!bytes_.empty() && size == size_ && buffer != nullptr) {
      const std::string sent(buffer, static_cast<std::size_t>(size));
      EXPECT_TRUE(bytes_ == sent) << "expected " << Hex(bytes_) << "\nsent     " << Hex(sent);
    }
  }

  bool Perform(int& size, char* buffer) const {
    if (!untouched_) Move(size, buffer);
    if (action_) action_();
    return result_;
  }

 private:
  Step& Phase(int direction, int size, bool buffer, const std::string& bytes = {}) {
    direction_ = direction;
    size_ = size;
    buffer_ = buffer;
    bytes_ = bytes;
    return *this;
  }

  // Never writes beyond the size asked, as no transport would.
  void Move(int& size, char* buffer) const {
    const auto room = static_cast<std::size_t>(std::max(size, 0));
    if (direction_ == 2 && buffer != nullptr) std::memcpy(buffer, answer_.data(), std::min(room, answer_.size()));
    const int natural = direction_ == 0 ? 0 : direction_ == 1 ? size : static_cast<int>(answer_.size());
    size = moved_.value_or(natural);
  }

  std::array<unsigned char, 16> cdb_{};
  int direction_ = 0;
  int size_ = 0;
  bool buffer_ = false;
  bool flag_ = true;
  std::string bytes_;
  std::string answer_;
  std::optional<int> moved_;
  bool result_ = true;
  bool untouched_ = false;
  std::function<void()> action_;
};

/// A camera over a script of expected commands, in order. A command that differs from the script, is not in it, or is
/// missing when the camera goes fails the test.
class ScriptedCamera : public PlainCamera {
 public:
  using PlainCamera::PlainCamera;

  ~ScriptedCamera() override {
    if (!script_.empty()) {
      ADD_FAILURE() << script_.size() << " expected commands were not sent; the first is "
                    << Hex(script_.front().Block());
    }
  }

  Step& Expect(std::initializer_list<int> leadingBytes) { return script_.emplace_back(leadingBytes); }
  void Expect(const Step& step) { script_.push_back(step); }
  /// For sweeps, where the number of commands is compared by the test itself.
  void ForgetTheRest() { script_.clear(); }

  bool Transfer(const _VscCdb& cdb, int direction, int& size, char* buffer, bool flag) override {
    calls.emplace_back(flag ? "Transfer true" : "Transfer false");
    ++transfers;
    if (script_.empty()) {
      ADD_FAILURE() << "not in the script: " << Hex(std::string(cdb.bytes, cdb.bytes + 16)) << " direction "
                    << direction << " size " << size;
      return false;
    }
    const Step step = script_.front();
    script_.pop_front();
    step.Check(cdb, direction, size, buffer, flag);
    return step.Perform(size, buffer);
  }

  int transfers = 0;

 private:
  std::deque<Step> script_;
};

}  // namespace wifi_testing

#endif  // KELVA_WIFI_TESTING_SCRIPTED_CAMERA_H_
