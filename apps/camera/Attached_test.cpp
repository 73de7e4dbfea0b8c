#include "apps/camera/Attached.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include <cstdlib>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/commandline/Failure.h"

namespace apps {
namespace {

using testing::HasSubstr;

AttachedCamera Made(const std::string& serial) {
  return {{serial, "Kelva", "Glimmer", "1.0", "driver"}, boost::make_shared<FakeCamera>(serial)};
}

std::vector<AttachedCamera> MadeAll(const std::vector<std::string>& serials) {
  std::vector<AttachedCamera> cameras;
  for (const std::string& serial : serials) cameras.push_back(Made(serial));
  return cameras;
}

Failure WhyNot(const std::vector<std::string>& serials, const std::optional<std::string>& wanted) {
  try {
    Choose(MadeAll(serials), wanted);
  } catch (const Failure& failure) {
    return failure;
  }
  return Failure(ExitCode::kDone, "chosen");
}

TEST(ChooseTest, OneCameraNeedsNoChoice) {
  EXPECT_EQ(Choose(MadeAll({"K1"}), std::nullopt).facts.serial, "K1");
}

TEST(ChooseTest, ASerialNumberChoosesAmongSeveral) {
  EXPECT_EQ(Choose(MadeAll({"K1", "K2", "K3"}), "K2").facts.serial, "K2");
}

TEST(ChooseTest, AWrongSerialNumberIsNeverAnotherCamera) {
  const Failure failure = WhyNot({"K1"}, "K9");
  EXPECT_EQ(failure.Code(), ExitCode::kNoCamera);
  EXPECT_STREQ(failure.what(), "No camera with the serial number K9 is attached; attached: K1.");
}

TEST(ChooseTest, SeveralWithoutAChoiceAreListed) {
  const Failure failure = WhyNot({"K1", ""}, std::nullopt);
  EXPECT_EQ(failure.Code(), ExitCode::kUsage);
  EXPECT_THAT(failure.what(), HasSubstr("2 cameras are attached: K1, one without a serial number; choose one"));
}

TEST(ChooseTest, TwoWithTheSameNumberAreNotGuessedAt) {
  EXPECT_EQ(WhyNot({"K1", "K1"}, "K1").Code(), ExitCode::kUsage);
}

TEST(ChooseTest, NoneAtAllIsNoCamera) {
  EXPECT_EQ(WhyNot({}, std::nullopt).Code(), ExitCode::kNoCamera);
  EXPECT_EQ(WhyNot({}, "K1").Code(), ExitCode::kNoCamera);
}

TEST(WantedSerialTest, TheOptionGoesBeforeTheVariable) {
  ::setenv("KELVA_SERIAL", "K1", 1);
  EXPECT_EQ(WantedSerial(std::nullopt), "K1");
  EXPECT_EQ(WantedSerial("K2"), "K2");
  ::setenv("KELVA_SERIAL", "", 1);
  EXPECT_EQ(WantedSerial(std::nullopt), std::nullopt);
  EXPECT_THROW(WantedSerial(""), Failure);
  ::unsetenv("KELVA_SERIAL");
}

TEST(PairTest, CamerasGetTheFactsOfTheirSerialNumberWhateverTheOrder) {
  const auto paired = Pair({boost::make_shared<FakeCamera>("K1"), boost::make_shared<FakeCamera>("K2")},
                           {{"K2", "Kelva", "B", "", ""}, {"K1", "Kelva", "A", "", ""}});
  ASSERT_EQ(paired.size(), 2U);
  EXPECT_EQ(paired[0].facts.product, "A");
  EXPECT_EQ(paired[1].facts.product, "B");
}

TEST(PairTest, ACameraWithoutANumberGetsWhatIsLeft) {
  const auto paired = Pair({boost::make_shared<FakeCamera>(""), boost::make_shared<FakeCamera>("K2")},
                           {{"K2", "Kelva", "B", "", ""}, {"", "Kelva", "A", "", ""}});
  EXPECT_EQ(paired[0].facts.product, "A");
  EXPECT_EQ(paired[1].facts.product, "B");
}

TEST(PairTest, ACameraThatTheRegistryNoLongerKnowsStaysInTheList) {
  const auto paired = Pair({boost::make_shared<FakeCamera>("K1")}, {});
  ASSERT_EQ(paired.size(), 1U);
  EXPECT_EQ(paired[0].facts.serial, "");
}

}  // namespace
}  // namespace apps
