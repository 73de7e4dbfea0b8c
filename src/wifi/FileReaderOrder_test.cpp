#include "FileReader.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <string>

#include "testing/FileCamera.h"
#include "testing/Reading.h"
#include "testing/Switches.h"

namespace {

using kelva::FileReader;
using Sent = std::vector<std::string>;
using namespace wifi_testing;

// Any part of a file.

class FileReaderOrder : public testing::Test {
 protected:
  boost::shared_ptr<FileCamera> Make(std::string file, bool forwardOnly) {
    const auto camera = boost::make_shared<FileCamera>(std::move(file));
    camera->forwardOnly = forwardOnly;
    return camera;
  }
};

TEST_F(FileReaderOrder, AnyPartIsRightOnEveryKindOfCamera) {
  for (const bool forwardOnly : {false, true}) {
    for (const bool refusesJumps : {false, true}) {
      const auto camera = Make(Pattern(200000), forwardOnly);
      camera->refusesJumps = refusesJumps;
      FileReader reader(camera, kPath);
      for (const std::size_t offset : {150000U, 0U, 199999U, 131072U, 131080U, 7U, 65535U, 1U}) {
        EXPECT_EQ(ReadAt(reader, offset, 8), camera->file.substr(offset, 8)) << offset;
        EXPECT_EQ(ReadOn(reader, 5), camera->file.substr(std::min<std::size_t>(offset + 8, 200000), 5));
      }
      EXPECT_EQ(reader.ReadsForwardOnly(), forwardOnly || refusesJumps);
    }
  }
}

TEST_F(FileReaderOrder, ReadingForwardAsksForNoProof) {
  const auto camera = Make(Pattern(200000), false);
  FileReader reader(camera, kPath);
  while (!ReadOn(reader, 65536).empty()) {
  }
  EXPECT_EQ(camera->sent, (Sent{"select", "size", "read 65536 at 0", "read 65536 at 65536", "read 65536 at 131072",
                                "read 65536 at 196608"}));
}

TEST_F(FileReaderOrder, GoingBackToTheStartAsksForNoProof) {
  const auto camera = Make(Pattern(3000), false);
  FileReader reader(camera, kPath);
  ReadOn(reader, 2000);
  EXPECT_EQ(ReadAt(reader, 0, 10), Pattern(10));
  EXPECT_EQ(camera->sent, (Sent{"select", "size", "read 2000 at 0", "select", "size", "read 10 at 0"}));
}

TEST_F(FileReaderOrder, ACameraThatIgnoresOffsetsIsReadForwardFromThenOn) {
  const auto camera = Make(Pattern(200000), true);
  FileReader reader(camera, kPath);
  ReadOn(reader, 100);
  camera->TakeSent();
  EXPECT_EQ(ReadAt(reader, 70000, 10), camera->file.substr(70000, 10));
  EXPECT_EQ(camera->TakeSent(),
            (Sent{"select", "size", "read 65536 at 0", "select", "size", "read 512 at 0", "read 512 at 64512", "select",
                  "size", "read 65536 at 0", "read 4464 at 65536", "read 10 at 70000"}));
  EXPECT_EQ(ReadAt(reader, 70020, 10), camera->file.substr(70020, 10));
  EXPECT_EQ(camera->TakeSent(), (Sent{"read 10 at 70010", "read 10 at 70020"}));
  EXPECT_EQ(ReadAt(reader, 3, 10), camera->file.substr(3, 10));
  EXPECT_EQ(camera->TakeSent(), (Sent{"select", "size", "read 3 at 0", "read 10 at 3"}));
}

TEST_F(FileReaderOrder, ACameraThatOnlyJumpsForwardHasNotProvedIt) {
  class OneWay : public FileCamera {
   public:
    using FileCamera::FileCamera;
    bool Transfer(const _VscCdb& cdb, int direction, int& size, char* buffer, bool flag) override {
      const int offset = cdb.bytes[3] | cdb.bytes[4] << 8;
      if (cdb.bytes[0] == 0xC2) farthest_ = 0;
      forwardOnly = cdb.bytes[0] == 0xC4 && offset < farthest_;
      if (cdb.bytes[0] == 0xC4) farthest_ = std::max(farthest_, offset);
      return FileCamera::Transfer(cdb, direction, size, buffer, flag);
    }

   private:
    int farthest_ = 0;
  };
  const auto camera = boost::make_shared<OneWay>(Pattern(60000));
  FileReader reader(camera, kPath);
  EXPECT_TRUE(reader.ReadsForwardOnly());
  EXPECT_EQ(ReadAt(reader, 40000, 8), camera->file.substr(40000, 8));
}

TEST_F(FileReaderOrder, AFileThatProvesNothingLeavesTheQuestionOpen) {
  const auto camera = Make(std::string(3000, '\0') + "end", false);
  FileReader zeros(camera, kPath);
  EXPECT_TRUE(zeros.ReadsForwardOnly());
  EXPECT_EQ(ReadAt(zeros, 3000, 10), "end");
  camera->TakeSent();
  EXPECT_TRUE(zeros.ReadsForwardOnly());
  EXPECT_EQ(camera->sent, Sent{}) << "asked once a reader";
  camera->file = Pattern(3003);
  EXPECT_FALSE(FileReader(camera, kPath).ReadsForwardOnly());
}

// At each of the three reads of the proof.
TEST_F(FileReaderOrder, AnErrorDuringTheProofLeavesTheQuestionOpenForTheNextReader) {
  for (const int throwsAt : {5, 6, 7}) {
    const auto camera = Make(Pattern(3000), false);
    camera->throwsAt = throwsAt;
    FileReader reader(camera, kPath);
    EXPECT_TRUE(reader.ReadsForwardOnly());
    EXPECT_EQ(camera->sent.at(static_cast<std::size_t>(throwsAt)).substr(0, 8), "read 512");
    EXPECT_EQ(ReadAt(reader, 1000, 5), Pattern(3000).substr(1000, 5));
    camera->TakeSent();
    camera->throwsAt = -1;
    EXPECT_TRUE(reader.ReadsForwardOnly());
    EXPECT_EQ(camera->sent, Sent{}) << "asked once a reader";
    EXPECT_FALSE(FileReader(camera, kPath).ReadsForwardOnly());
  }
}

TEST_F(FileReaderOrder, ATransportOfTinyChunksIsReadForwardOnly) {
  const auto camera = boost::make_shared<FileCamera>(Pattern(3000), 511);
  FileReader reader(camera, kPath);
  EXPECT_TRUE(reader.ReadsForwardOnly());
  EXPECT_EQ(ReadAt(reader, 2000, 5), camera->file.substr(2000, 5));
}

TEST_F(FileReaderOrder, SmallChunksAreGatheredForTheProof) {
  const auto camera = boost::make_shared<FileCamera>(Pattern(3000), 512);
  FileReader reader(camera, kPath);
  EXPECT_FALSE(reader.ReadsForwardOnly());
}

}  // namespace
