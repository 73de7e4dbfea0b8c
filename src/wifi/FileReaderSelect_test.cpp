#include "FileReader.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <boost/weak_ptr.hpp>
#include <string>
#include <vector>

#include "testing/FaultSweep.h"
#include "testing/FileCamera.h"
#include "testing/Reading.h"
#include "testing/Switches.h"

namespace {

using kelva::FileReader;
using Reason = kelva::FileReadError::Reason;
using Sent = std::vector<std::string>;
using namespace wifi_testing;

// What ends a selection, and taking the file up again.

TEST(FileReaderSelect, TakesTheFileUpWhereTheLastReadEnded) {
  for (const bool forwardOnly : {false, true}) {
    const auto camera = boost::make_shared<FileCamera>(Pattern(5000));
    camera->forwardOnly = forwardOnly;
    FileReader reader(camera, kPath);
    ReadOn(reader, 1000);
    reader.Select();
    EXPECT_EQ(reader.Position(), 1000U);
    EXPECT_EQ(ReadOn(reader, 10), camera->file.substr(1000, 10));
  }
}

TEST(FileReaderSelect, OfAFileOfAnotherSizeIsAnErrorThatStays) {
  const auto camera = boost::make_shared<FileCamera>(Pattern(50));
  FileReader reader(camera, kPath);
  camera->file += "more";
  EXPECT_EQ(ReasonOf([&] { reader.Select(); }), Reason::kSizeChanged);
  EXPECT_EQ(ReasonOf([&] { ReadOn(reader, 5); }), Reason::kNotSelected);
  EXPECT_EQ(Thrown([&] { reader.Select(); }),
            "CameraError: Camera error: FileReader: the file has 54 bytes now, and had 50.");
  EXPECT_EQ(reader.Size(), 50U);
}

TEST(FileReaderSelect, IsNeededAfterAnError) {
  const auto camera = boost::make_shared<FileCamera>(Pattern(50), 10);
  FileReader reader(camera, kPath);
  camera->throwsAt = 4;
  std::vector<char> piece(50);
  EXPECT_EQ(Thrown([&] { reader.ReadOn(piece); }), "CameraTransferError: Camera error: cut");
  EXPECT_EQ(reader.Position(), 20U);
  EXPECT_EQ(ToString(piece).substr(0, 20), Pattern(20));
  EXPECT_EQ(ReasonOf([&] { ReadOn(reader, 5); }), Reason::kNotSelected);
  EXPECT_EQ(ReasonOf([&] { reader.ReadsForwardOnly(); }), Reason::kNotSelected);
  reader.Select();
  EXPECT_EQ(ReadAt(reader, 20, 30), Pattern(50).substr(20));
}

TEST(FileReaderSelect, AClosedCameraIsAskedNothing) {
  const auto camera = boost::make_shared<FileCamera>(Pattern(50));
  FileReader reader(camera, kPath);
  camera->Close();
  camera->TakeSent();
  EXPECT_EQ(ReasonOf([&] { ReadOn(reader, 5); }), Reason::kNotOpen);
  EXPECT_EQ(ReasonOf([&] { reader.Select(); }), Reason::kNotOpen);
  EXPECT_EQ(ReasonOf([&] { FileReader(camera, kPath); }), Reason::kNotOpen);
  EXPECT_EQ(camera->sent, Sent{});
}

TEST(FileReaderSelect, AfterTheLossEveryCallThrows) {
  const auto camera = boost::make_shared<FileCamera>(Pattern(50));
  FileReader reader(camera, kPath);
  camera->lost = true;
  camera->TakeSent();
  EXPECT_EQ(ReasonOf([&] { ReadOn(reader, 5); }), Reason::kCameraLost);
  EXPECT_EQ(ReasonOf([&] { ReadAt(reader, 7, 5); }), Reason::kCameraLost);
  EXPECT_EQ(ReasonOf([&] { reader.Select(); }), Reason::kCameraLost);
  EXPECT_EQ(ReasonOf([&] { reader.ReadsForwardOnly(); }), Reason::kCameraLost);
  EXPECT_EQ(camera->sent, Sent{});
  EXPECT_EQ(reader.Size(), 50U);
}

TEST(FileReaderSelect, AReaderCanBeMoved) {
  const auto camera = boost::make_shared<FileCamera>(Pattern(50));
  FileReader reader(camera, kPath);
  ReadOn(reader, 5);
  FileReader moved = std::move(reader);
  EXPECT_EQ(ReadOn(moved, 5), Pattern(50).substr(5, 5));
}

TEST(FileReaderSelect, TheReaderHoldsItsCamera) {
  boost::shared_ptr<FileCamera> camera = boost::make_shared<FileCamera>(Pattern(50));
  FileReader reader(camera, kPath);
  const boost::weak_ptr<FileCamera> watched = camera;
  camera.reset();
  EXPECT_EQ(ReadOn(reader, 5), Pattern(5));
  EXPECT_FALSE(watched.expired());
}

// Thrown, false, one byte less, one byte more: at each transfer of a file that has two chunks and is read in two pieces.
TEST(FileReaderFaults, EveryFaultHasItsOutcome) {
  const auto run = [](Camera& camera) {
    FileReader reader({&camera, [](Camera*) {}}, "x");
    std::string text = ReadOn(reader, 8);
    text += ReadOn(reader, 8);
    reader.Select();
    return text;
  };
  const Step path = Step({0xC2, 0, 1}).Sends(Text("x"));
  const Step size = Step({0xC6, 0, 0}).Asks(4).Answers({10, 0, 0, 0});
  RunSweep(
      {"FileReader",
       8,
       {path, size, Step({0xC4, 0, 1, 0}).Asks(8).Answers("abcdefgh"), Step({0xC4, 0, 1, 8}).Asks(8).Answers("ij"),
        path, size},
       run,
       "6 abcdefghij",
       {{"1 cut", "1 FileReader: the camera refused to select the file.", "6 abcdefghij", "6 abcdefghij"},
        {"2 cut", "2 FileReader: the camera refused to select the file.", "6 abcdefghij", "6 abcdefghij"},
        {"3 cut", "3 FileReader: the camera refused a read at 0.", "3 FileReader: the file ended after 7 of 10 bytes.",
         "3 FileReader: more came than the 10 bytes that the camera announced."},
        {"4 cut", "4 FileReader: the camera refused a read at 8.", "4 FileReader: the file ended after 9 of 10 bytes.",
         "6 abcdefghij"},
        {"5 cut", "5 FileReader: the camera refused to select the file.", "6 abcdefghij", "6 abcdefghij"},
        {"6 cut", "6 FileReader: the camera refused to select the file.", "6 abcdefghij", "6 abcdefghij"}}});
}

// Every transfer of every sequence fails once: the outcome is an error of a type, or right bytes.
TEST(FileReaderFaults, AtEachTransferEndInAnErrorOrInRightBytes) {
  for (const bool throwing : {true, false}) {
    const ExceptionsOff mode(throwing);
    for (const bool forwardOnly : {false, true}) {
      const auto read = [&](int throwsAt, std::string& got) {
        const auto camera = boost::make_shared<FileCamera>(Pattern(70000));
        camera->forwardOnly = forwardOnly;
        camera->throwsAt = throwsAt;
        FileReader reader(camera, kPath);
        got = ReadAt(reader, 69000, 10);
        got += ReadOn(reader, 990);
        got += ReadAt(reader, 5, 5);
        return static_cast<int>(camera->sent.size());
      };
      std::string right;
      const int transfers = read(-1, right);
      EXPECT_TRUE(right == Pattern(70000).substr(69000) + Pattern(10).substr(5));
      for (int at = 0; at < transfers; ++at) {
        std::string got;
        const std::string error = Thrown([&] { read(at, got); });
        EXPECT_TRUE(error.empty() ? got == right : error == "CameraTransferError: Camera error: cut") << at;
      }
    }
  }
}

}  // namespace
