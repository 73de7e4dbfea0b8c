#include "apps/camera/Registry.h"

#include <gtest/gtest.h>

#include "darwin/virtual/VirtualRegistry.h"

namespace apps {
namespace {

darwin::CameraDescription Made(const std::string& serial, const std::string& vendor, unsigned type) {
  return {serial, vendor, "Camera", "1.00", type, {}};
}

TEST(RegistryTest, CamerasOfThisMakerAreListedWithWhatTheirEntriesSay) {
  darwin::VirtualRegistry registry;
  registry.AttachCamera(Made("K1", "Kelva", 0));
  registry.AttachCamera(Made("K2", "Other", 3));
  registry.AttachCamera(Made("K3", "Kelva", 3));
  const auto cameras = CamerasInRegistry();
  ASSERT_EQ(cameras.size(), 2U);
  EXPECT_EQ(cameras[0].serial, "K3");
  EXPECT_EQ(cameras[0].driver, "com_kelva_Glimmer");
  EXPECT_EQ(cameras[0].product, "Camera");
  EXPECT_EQ(cameras[0].revision, "1.00");
  EXPECT_EQ(cameras[1].serial, "K1");
  EXPECT_EQ(cameras[1].driver, "com_kelva_Glimmer_ms");
}

TEST(RegistryTest, ACameraWithoutASerialNumberHasNone) {
  darwin::VirtualRegistry registry;
  registry.AttachCamera(Made("", "Kelva", 3));
  ASSERT_EQ(CamerasInRegistry().size(), 1U);
  EXPECT_EQ(CamerasInRegistry()[0].serial, "");
}

}  // namespace
}  // namespace apps
