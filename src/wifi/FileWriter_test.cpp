#include "FileWriter.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "testing/FaultSweep.h"
#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace {

using namespace wifi_testing;

/// Gives a text piece by piece, and notes the sizes that it was asked for.
class Paper {
 public:
  explicit Paper(std::string text) : text_(std::move(text)) {}

  kelva::ByteSource Source() {
    return [this](std::span<char> chunk) {
      asked.push_back(chunk.size());
      std::memcpy(chunk.data(), text_.data() + given_, chunk.size());
      given_ += chunk.size();
    };
  }

  std::vector<std::size_t> asked;

 private:
  std::string text_;
  std::size_t given_ = 0;
};

TEST(WriteFileFrom, SendsWhatWriteFileSends) {
  const std::string file = Pattern(70000);
  ScriptedCamera camera;
  camera.open = false;
  camera.Expect({0xC2, 0x00, 0x01, 0x01}).Sends(Bytes({'I', ':', '\\', 'A', 0}));
  camera.Expect({0xC5, 0x00, 0x00, 0x00, 0x00, 0x00}).Sends(file.substr(0, 65536));
  camera.Expect({0xC5, 0x00, 0x00, 0x00, 0x01, 0x00}).Sends(file.substr(65536, 4464));
  camera.Expect({0xC3, 0x00, 0x00});
  Paper text(file);
  Progress progress;
  kelva::WriteFile(camera, "I:\\A", 70000, text.Source(), Progress::Report, &progress);
  EXPECT_EQ(text.asked, (std::vector<std::size_t>{65536, 4464}));
  EXPECT_EQ(progress.fractions, std::vector<float>{0.0f});
  EXPECT_EQ(camera.calls,
            (Calls{"ClearCancel true", "Transfer true", "Transfer true", "Transfer true", "Transfer true"}));
}

TEST(WriteFileFrom, OfNothingAsksForNothing) {
  ScriptedCamera camera;
  camera.Expect({0xC2, 0x00, 0x01, 0x01}).Sends(Text("x"));
  camera.Expect({0xC3, 0x00, 0x00});
  Paper text("");
  kelva::WriteFile(camera, "x", 0, text.Source());
  EXPECT_EQ(text.asked, std::vector<std::size_t>{});
}

TEST(WriteFileFrom, AsksForEachChunkRightBeforeItGoesOut) {
  ScriptedCamera camera(4, 4);
  Paper text("abcdefghij");
  Progress progress;
  const auto asked = [&](std::size_t times) {
    return [&, times] {
      EXPECT_EQ(text.asked.size(), times);
      EXPECT_EQ(progress.fractions.size(), times);
    };
  };
  camera.Expect({0xC2, 0x00, 0x01, 0x01}).Sends(Text("x")).Then(asked(0));
  camera.Expect({0xC5, 0x00, 0}).Sends("abcd").Then(asked(1));
  camera.Expect({0xC5, 0x00, 4}).Sends("efgh").Then(asked(2));
  camera.Expect({0xC5, 0x00, 8}).Sends("ij").Then(asked(3));
  camera.Expect({0xC3});
  kelva::WriteFile(camera, "x", 10, text.Source(), Progress::Report, &progress);
  EXPECT_EQ(text.asked, (std::vector<std::size_t>{4, 4, 2}));
  EXPECT_EQ(progress.fractions, (std::vector<float>{0.0f, 0.4f, 0.8f}));
}

TEST(WriteFileFrom, AnExceptionOfTheSourceEndsItThere) {
  ScriptedCamera camera(4);
  camera.Expect({0xC2, 0x00, 0x01, 0x01}).Sends(Text("x"));
  camera.Expect({0xC5, 0x00, 0}).Sends("aaaa");
  int chunks = 0;
  const auto source = [&](std::span<char> chunk) {
    if (++chunks == 2) throw std::runtime_error("The disk is gone.");
    std::memset(chunk.data(), 'a', chunk.size());
  };
  EXPECT_THROW(kelva::WriteFile(camera, "x", 10, source), std::runtime_error);
  EXPECT_EQ(camera.transfers, 2);
}

/// Counts the bytes that arrive and where; looks at none.
class Sink : public PlainCamera {
 public:
  using PlainCamera::PlainCamera;
  bool Transfer(const _VscCdb& cdb, int, int& size, char*, bool) override {
    if (cdb.bytes[0] == 0xC1) announced.assign(cdb.bytes + 2, cdb.bytes + 6);
    if (cdb.bytes[0] != 0xC5) return true;
    ++chunks;
    last.assign(cdb.bytes + 2, cdb.bytes + 6);
    bytes += static_cast<std::uint64_t>(size);
    return true;
  }

  std::string announced, last;
  std::uint64_t bytes = 0;
  int chunks = 0;
};

TEST(WriteFileFrom, OfFourGibibytesDoesNotWrap) {
  const auto nothing = [](std::span<char>) {};
  for (const std::uint32_t length : {0xFFFFFFFEU, 0xFFFFFFFFU}) {
    Sink camera(1 << 24);
    Progress progress;
    kelva::WriteFile(camera, "x", length, nothing, Progress::Report, &progress);
    EXPECT_EQ(camera.bytes, length);
    EXPECT_EQ(camera.chunks, 256);
    EXPECT_EQ(camera.last, Bytes({0, 0, 0, 0xFF}));
    EXPECT_EQ(progress.fractions.size(), 256U);
    EXPECT_LE(progress.fractions.back(), 1.0f);
    kelva::Upgrade(camera, length, nothing);
    EXPECT_EQ(camera.announced, Bytes({static_cast<int>(length & 0xFF), 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(camera.bytes, 2 * std::uint64_t{length});
  }
}

TEST(UpgradeFrom, SendsWhatUpgradeSends) {
  const std::string image = Pattern(200000);
  ScriptedCamera camera;
  camera.Expect({0xC1, 0x00, 0x40, 0x0D, 0x03, 0x00});
  camera.Expect({0xC5, 0x00, 0x00, 0x00, 0x00, 0x00}).Sends(image.substr(0, 65536));
  camera.Expect({0xC5, 0x00, 0x00, 0x00, 0x01, 0x00}).Sends(image.substr(65536, 65536));
  camera.Expect({0xC5, 0x00, 0x00, 0x00, 0x02, 0x00}).Sends(image.substr(131072, 65536));
  camera.Expect({0xC5, 0x00, 0x00, 0x00, 0x03, 0x00}).Sends(image.substr(196608, 3392));
  camera.Expect({0xC0, 0x00, 0x02});
  Paper text(image);
  Progress progress;
  kelva::Upgrade(camera, 200000, text.Source(), Progress::Report, &progress);
  EXPECT_EQ(text.asked, (std::vector<std::size_t>{65536, 65536, 65536, 3392}));
  EXPECT_EQ(progress.fractions, std::vector<float>{0.0f});
}

TEST(WriteFileFrom, EveryFaultHasItsOutcome) {
  const std::vector<Outcomes> outcomes = {{"1 cut", "4 done", "4 done", "4 done"},
                                          {"2 cut", "4 done", "4 done", "4 done"},
                                          {"3 cut", "4 done", "4 done", "4 done"},
                                          {"4 cut", "4 done", "4 done", "4 done"}};
  RunSweep({"WriteFileFrom",
            8,
            {Step({0xC2, 0, 1, 1}).Sends(Text("x")), Step({0xC5, 0, 0}).Sends("abcdefgh"),
             Step({0xC5, 0, 8}).Sends("ij"), Step({0xC3})},
            [](Camera& camera) {
              Paper text("abcdefghij");
              kelva::WriteFile(camera, "x", 10, text.Source());
              return "done";
            },
            "4 done",
            outcomes});
  RunSweep(
      {"UpgradeFrom",
       8,
       {Step({0xC1, 0, 10}), Step({0xC5, 0, 0}).Sends("abcdefgh"), Step({0xC5, 0, 8}).Sends("ij"), Step({0xC0, 0, 2})},
       [](Camera& camera) {
         Paper text("abcdefghij");
         kelva::Upgrade(camera, 10, text.Source());
         return "done";
       },
       "4 done",
       outcomes});
}

}  // namespace
