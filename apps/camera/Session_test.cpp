#include "apps/camera/Session.h"

#include <gtest/gtest.h>

#include "apps/commandline/Failure.h"
#include "apps/commandline/testing/SilentContext.h"
#include "darwin/virtual/VirtualRegistry.h"

namespace apps {
namespace {

class SessionTest : public testing::Test, protected SilentContext {
 protected:
  ExitCode WhyNot() {
    try {
      const Session session(context_, "try the camera");
    } catch (const Failure& failure) {
      return failure.Code();
    }
    return ExitCode::kDone;
  }

  darwin::VirtualRegistry registry_;
};

TEST_F(SessionTest, WithoutACameraThereIsNone) {
  EXPECT_EQ(WhyNot(), ExitCode::kNoCamera);
}

TEST_F(SessionTest, ACameraThatCannotBeOpenedIsBusy) {
  registry_.AttachCamera({"K1", "Kelva", "Camera", "1.00", 3, {}});
  EXPECT_EQ(WhyNot(), ExitCode::kBusy);
}

TEST_F(SessionTest, TheOptionChoosesTheCamera) {
  registry_.AttachCamera({"K1", "Kelva", "Camera", "1.00", 3, {}});
  call_.Add("serial", "K9");
  EXPECT_EQ(WhyNot(), ExitCode::kNoCamera);
}

}  // namespace
}  // namespace apps
