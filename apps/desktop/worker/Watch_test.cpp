#include "apps/desktop/worker/Watch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/commandline/testing/SilentContext.h"
#include "darwin/virtual/VirtualRegistry.h"

namespace apps {
namespace {

struct Watched : SilentContext {
  Watched() : SilentContext({.json = true}) {}
};

TEST(WatchTest, CamerasThatAreThereComeFirstThenWhatIsInTheWay) {
  Watched watched;
  const auto look = [&] {
    watched.stop_.Request();
    return std::vector<doctor::Finding>{
        {doctor::Condition::kNoPermission, "K2", "This user may not.", "sudo usermod -aG plugdev me", "Log in again."}};
  };
  darwin::VirtualRegistry registry;
  registry.AttachCamera({"K1", "Kelva", "Camera", "1.00", 3, {}});
  EXPECT_THROW(WatchCameras(watched.context_, look), Stopped);
  EXPECT_EQ(watched.Printed(),
            R"({"schema":1,"event":"attached","serial":"K1","product":"Camera","revision":"1.00","present":true}
{"schema":1,"event":"trouble","findings":[{"condition":"no-permission","harmless":false,"serial":"K2","sentence":"This user may not.",)"
            R"("command":"sudo usermod -aG plugdev me","advice":"Log in again."}]}
{"schema":1,"event":"ready"}
)");
}

}  // namespace
}  // namespace apps
