#ifndef KELVA_TESTS_PROTOCOL_PLAYER_H_
#define KELVA_TESTS_PROTOCOL_PLAYER_H_

#include <string>
#include <vector>

#include "src/wifi/testing/PlainCamera.h"
#include "tests/protocol/Document.h"

/// A camera that plays an example: each transfer must be the next step, and is answered as the step says.
class Player final : public wifi_testing::PlainCamera {
 public:
  explicit Player(std::vector<Step> steps);
  /// Every step must have been taken.
  ~Player() override;

  bool Transfer(const _VscCdb& cdb, int direction, int& size, char* buffer, bool flag) override;

 private:
  const std::vector<Step> steps_;
  std::size_t next_ = 0;
};

#endif  // KELVA_TESTS_PROTOCOL_PLAYER_H_
