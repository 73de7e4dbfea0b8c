#include "apps/camera/Registry.h"

#include <gtest/gtest.h>

#include <vector>

#include "apps/camera/testing/FakeCamera.h"
#include "darwin/virtual/VirtualRegistry.h"

namespace apps {
namespace {

darwin::CameraDescription Made(const std::string& serial, const std::string& vendor, unsigned type) {
  return {serial, vendor, "Camera", "1.00", type, {}};
}

std::vector<RegistryCamera> FactsOfAll() {
  std::vector<RegistryCamera> facts;
  for (const auto& camera : Camera::EnumerateCameras(true, "", false, 0)) facts.push_back(FactsOf(*camera));
  return facts;
}

TEST(RegistryTest, FactsAreThoseOfTheCamerasEntryAndOfTheUsbDeviceAboveIt) {
  darwin::VirtualRegistry registry;
  registry.AttachCamera(Made("K1", "Kelva", 0));
  registry.AttachCamera(Made("K3", "Other", 3));
  const auto cameras = FactsOfAll();
  ASSERT_EQ(cameras.size(), 2U);
  EXPECT_EQ(cameras[0].serial, "K3");
  EXPECT_EQ(cameras[0].vendor, "Other");
  EXPECT_EQ(cameras[0].driver, "com_kelva_Glimmer");
  EXPECT_EQ(cameras[0].product, "Camera");
  EXPECT_EQ(cameras[0].revision, "1.00");
  EXPECT_EQ(cameras[1].serial, "K1");
  EXPECT_EQ(cameras[1].driver, "com_kelva_Glimmer_ms");
}

TEST(RegistryTest, ACameraWithoutASerialNumberHasNone) {
  darwin::VirtualRegistry registry;
  registry.AttachCamera(Made("", "Kelva", 3));
  ASSERT_EQ(FactsOfAll().size(), 1U);
  EXPECT_EQ(FactsOfAll()[0].serial, "");
}

TEST(RegistryTest, ACameraOfAnotherTransportHasNoFacts) {
  EXPECT_EQ(FactsOf(FakeCamera("K1")).serial, "");
  EXPECT_EQ(FactsOf(FakeCamera("K1")).driver, "");
}

}  // namespace
}  // namespace apps
