#include <gmock/gmock.h>

#include "src/wifi/FileReader.h"
#include "src/wifi/testing/ReadPart.h"
#include "tests/doors/DoorTest.h"
#include "tests/doors/Readings.h"
#include "vcam/camera/testing/TestSupport.h"

// Every fault at every command with which a file is read in pieces, through every door, as a program sees it that uses the
// library.

namespace tests::doors {
namespace {

using kelva::FileReadError;
using kelva::test::DistinctBlocks;
using kelva::test::ReadPart;
using vcam::Fault;
using vcam::FaultKind;

constexpr const char* kPath = R"(I:\file)";
constexpr std::size_t kSize = 70'000;

/// Jumps ahead, reads on to the end, takes the file up again.
std::string ReadParts(const boost::shared_ptr<Camera>& camera) {
  kelva::FileReader reader(camera, kPath);
  std::string text = ReadPart(reader, 69'000, 100);
  text += ReadPart(reader, reader.Position(), 10'000);
  reader.Select();
  return text + ReadPart(reader, 0, 10);
}

std::string Parts() {
  const std::string content = DistinctBlocks(kSize);
  return content.substr(69'000) + content.substr(0, 10);
}

char LetterOf(FileReadError::Reason reason) {
  switch (reason) {
    case FileReadError::Reason::kTruncated:
      return kTruncated;
    case FileReadError::Reason::kSurplus:
      return kSurplus;
    case FileReadError::Reason::kSizeChanged:
      return kSizeChanged;
    default:
      return '!';
  }
}

/// The letter of what came of reading.
char Result(const boost::shared_ptr<Camera>& camera) {
  try {
    const std::string text = ReadParts(camera);
    return text == Parts() ? kRight : text.size() == Parts().size() ? kOtherBytes : '!';
  } catch (const FileReadError& error) {
    return LetterOf(error.Why());
  } catch (const CameraTransferError&) {
    return kTransfer;
  }
}

class EveryReading : public DoorTest {
 protected:
  /// With the fault at this command, counted from 1.
  char Try(Order order, std::uint64_t at) {
    const vcam::test::ScratchStorage card;
    card.Put("file", DistinctBlocks(kSize));
    vcam::Options options = card.CameraOptions(kSerial);
    options.forwardOnly = order == Order::kForwardOnly;
    door_.Plug(options);
    const boost::shared_ptr<Camera> camera = Camera::GetCamera(kSerial, "", false, false);
    if (!camera || !camera->Open()) return '!';
    door_.Arm({Kind(), Kind() == FaultKind::kUnplugAtByte ? BytesBefore(order, at) : at});
    if (Kind() == FaultKind::kHang) door_.GrowImpatient();
    const char result = Result(camera);
    camera->Close();
    door_.Unplug(Kind() == FaultKind::kUnplugAtByte);
    return result;
  }
};

TEST_P(EveryReading, GivesWhatTheTableSaysAtEveryCommand) {
  for (const Order order : {Order::kAny, Order::kForwardOnly}) {
    const std::string expected(ExpectedReading(order, Kind(), door_.counting()));
    ASSERT_EQ(expected.size(), CommandsOf(order));
    std::string results;
    for (std::size_t at = 1; at <= CommandsOf(order); ++at) {
      const char result = Try(order, at);
      const bool either = expected[at - 1] == kRightOrTransfer && (result == kRight || result == kTransfer);
      results += either ? kRightOrTransfer : result;
    }
    EXPECT_EQ(results, expected) << (order == Order::kAny ? "any order" : "forward only");
  }
}

INSTANTIATE_TEST_SUITE_P(All, EveryReading, AllDoorTests(), NameOfDoorTest);

}  // namespace
}  // namespace tests::doors
