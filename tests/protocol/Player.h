#ifndef KELVA_TESTS_PROTOCOL_PLAYER_H_
#define KELVA_TESTS_PROTOCOL_PLAYER_H_

#include <string>
#include <vector>

#include "src/wifi/Camera.h"
#include "tests/protocol/Document.h"

/// A camera that plays an example: each transfer must be the next step, and is answered as the step says.
class Player final : public Camera {
 public:
  explicit Player(std::vector<Step> steps);
  /// Every step must have been taken.
  ~Player() override;

  std::string Name() const override { return "player"; }
  std::string MountPath() const override { return {}; }
  bool Open() override { return true; }
  void Close() override {}
  void ListenForCameraLost(void (*)(void*), void*) override {}
  bool WasDisconnected() override { return false; }
  bool IsScsiInquiryCorrect() const override { return true; }
  bool Cancel(bool, bool) override { return false; }
  void ClearCancel(bool) override {}
  bool IsOpen() override { return true; }
  bool CompareSn(const char*) const override { return false; }
  bool Transfer(const _VscCdb& cdb, int direction, int& size, char* buffer, bool flag) override;

 private:
  const std::vector<Step> steps_;
  std::size_t next_ = 0;
};

#endif  // KELVA_TESTS_PROTOCOL_PLAYER_H_
