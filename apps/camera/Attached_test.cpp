#include "apps/camera/Attached.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include <cstdlib>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/commandline/Failure.h"
#include "darwin/virtual/VirtualRegistry.h"

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

TEST(AttachedTest, TheCameraWithoutASerialNumberHasAWord) {
  const RegistryCamera with = Made("K1").facts;
  const RegistryCamera without = Made("").facts;
  EXPECT_EQ(SerialWord(with), "K1");
  EXPECT_EQ(SerialWord(without), "-");
  EXPECT_TRUE(IsWanted(without, std::nullopt));
  EXPECT_TRUE(IsWanted(without, "-"));
  EXPECT_FALSE(IsWanted(without, "K1"));
  EXPECT_FALSE(IsWanted(with, "-"));
  EXPECT_TRUE(IsWanted(with, "K1"));
}

TEST(ChooseTest, OneCameraNeedsNoChoice) {
  EXPECT_EQ(Choose(MadeAll({"K1"}), std::nullopt).facts.serial, "K1");
}

TEST(ChooseTest, ASerialNumberChoosesAmongSeveral) {
  EXPECT_EQ(Choose(MadeAll({"K1", "K2", "K3"}), "K2").facts.serial, "K2");
}

TEST(ChooseTest, ADashChoosesTheOneWithoutASerialNumber) {
  EXPECT_EQ(Choose(MadeAll({"K1", "", "K3"}), "-").facts.serial, "");
  EXPECT_EQ(WhyNot({"K1"}, "-").Code(), ExitCode::kNoCamera);
  EXPECT_EQ(WhyNot({"", ""}, "-").Code(), ExitCode::kUsage);
}

TEST(ChooseTest, AWrongSerialNumberIsNeverAnotherCamera) {
  const Failure failure = WhyNot({"K1"}, "K9");
  EXPECT_EQ(failure.Code(), ExitCode::kNoCamera);
  EXPECT_STREQ(failure.what(), "No camera with the serial number K9 is attached; attached: K1.");
}

TEST(ChooseTest, SeveralWithoutAChoiceAreListed) {
  const Failure failure = WhyNot({"K1", ""}, std::nullopt);
  EXPECT_EQ(failure.Code(), ExitCode::kUsage);
  EXPECT_THAT(failure.what(), HasSubstr("2 cameras are attached: K1, one without a serial number (-); choose one"));
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

TEST(FindAttachedTest, GivesEachCameraItsOwnFacts) {
  darwin::VirtualRegistry registry;
  registry.AttachCamera({"K1", "Kelva", "A", "1.00", 3, {}});
  registry.AttachCamera({"", "Kelva", "B", "1.00", 3, {}});
  registry.AttachCamera({"K1", "Kelva", "C", "1.00", 3, {}});
  registry.AttachCamera({"K4", "Other", "D", "1.00", 3, {}});
  StdoutDiversion diversion;
  std::vector<std::string> products;
  for (const AttachedCamera& camera : FindAttached(diversion)) {
    products.push_back(camera.facts.product + camera.facts.serial);
    EXPECT_EQ(camera.camera->CompareSn("K1"), camera.facts.serial == "K1");
  }
  EXPECT_THAT(products, testing::UnorderedElementsAre("AK1", "B", "CK1"));
}

}  // namespace
}  // namespace apps
