#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>

#include "src/wifi/Camera.h"
#include "tests/doors/DoorTest.h"
#include "vcam/camera/testing/TestSupport.h"

// Every fault at every command through every door, as a program sees it that uses the library.

namespace tests::doors {
namespace {

using vcam::Fault;
using vcam::FaultKind;

constexpr std::uint8_t kUntouched = 0xCC;
// Behind what was asked for, where nobody may write.
constexpr std::size_t kFence = 64;
constexpr std::chrono::milliseconds kSlowness{3};

_VscCdb BlockOf(const Bytes& bytes) {
  _VscCdb block{};
  std::copy(bytes.begin(), bytes.end(), block.bytes);
  return block;
}

/// What one command gave: `data` is the whole buffer, fence included.
Outcome Send(Camera& camera, const Exchange& exchange) {
  const bool sends = !exchange.sent.empty();
  Bytes buffer = sends ? exchange.sent : Bytes(exchange.asked + kFence, kUntouched);
  int size = static_cast<int>(sends ? exchange.sent.size() : exchange.asked);
  const int direction = sends ? 1 : exchange.asked != 0 ? 2 : 0;
  Outcome outcome;
  try {
    camera.Transfer(BlockOf(exchange.block), direction, size, reinterpret_cast<char*>(buffer.data()), true);
    outcome.moved = size;
  } catch (const CameraTransferError& error) {
    const std::string text = error.what();
    outcome.error = text.substr(std::min(text.size(), text.rfind('\n') + 1));
  }
  outcome.data = std::move(buffer);
  return outcome;
}

/// The buffer that a row's command leaves: the data, and nothing else touched.
Bytes BufferWith(const Row& row, const Bytes& data) {
  if (!row.command.sent.empty()) return row.command.sent;
  Bytes buffer(row.command.asked + kFence, kUntouched);
  std::copy(data.begin(), data.end(), buffer.begin());
  return buffer;
}

/// Without the bytes that depend on the moment.
Bytes Steady(const Row& row, Bytes buffer) {
  if (row.steady != 0) {
    std::fill(buffer.begin() + static_cast<std::ptrdiff_t>(row.steady),
              buffer.begin() + static_cast<std::ptrdiff_t>(row.command.asked), kUntouched);
  }
  return buffer;
}

Fault FaultOf(FaultKind kind) {
  if (kind == FaultKind::kSlow) return {kind, static_cast<std::uint64_t>(kSlowness.count())};
  return {kind, kind == FaultKind::kUnplugAtByte ? 0U : 1U};
}

class EveryFault : public DoorTest {
 protected:
  void Try(const Row& row) {
    const vcam::test::ScratchStorage card;
    FillCard(card.Path());
    door_.Plug(card.CameraOptions(kSerial));
    const boost::shared_ptr<Camera> camera = Camera::GetCamera(kSerial, "", false, false);
    ASSERT_TRUE(camera->Open()) << row.name;
    for (const Exchange& before : row.before) {
      ASSERT_EQ(Send(*camera, before).error, "") << row.name;
    }
    door_.Arm(FaultOf(Kind()));
    if (Kind() == FaultKind::kHang) door_.GrowImpatient();
    const auto begin = std::chrono::steady_clock::now();
    const Outcome outcome = Send(*camera, row.command);
    const auto least = Kind() == FaultKind::kSlow ? kSlowness : std::chrono::milliseconds(0);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, least) << row.name;
    Compare(row, outcome);
    camera->Close();
    door_.Unplug(Kind() == FaultKind::kUnplugAtByte);
  }

 private:
  void Compare(const Row& row, const Outcome& outcome) {
    const Outcome expected = Expected(row, Kind(), door_.counting());
    EXPECT_EQ(outcome.error, expected.error) << row.name;
    EXPECT_EQ(outcome.moved, expected.moved) << row.name;
    EXPECT_EQ(Steady(row, outcome.data), Steady(row, BufferWith(row, expected.data))) << row.name;
  }
};

TEST_P(EveryFault, GivesWhatTheTableSaysAtEveryCommand) {
  for (const Row& row : Rows()) Try(row);
}

INSTANTIATE_TEST_SUITE_P(All, EveryFault, AllDoorTests(), NameOfDoorTest);

}  // namespace
}  // namespace tests::doors
