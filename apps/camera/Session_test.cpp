#include "apps/camera/Session.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/testing/SilentContext.h"
#include "apps/trace/Trace.h"
#include "base/testing/ScratchFolder.h"
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
  call_.Add("wait-busy", "0");
  registry_.AttachCamera({"K1", "Kelva", "Camera", "1.00", 3, {}});
  EXPECT_EQ(WhyNot(), ExitCode::kBusy);
}

TEST_F(SessionTest, TheOptionChoosesTheCamera) {
  registry_.AttachCamera({"K1", "Kelva", "Camera", "1.00", 3, {}});
  call_.Add("serial", "K9");
  EXPECT_EQ(WhyNot(), ExitCode::kNoCamera);
}

TEST_F(SessionTest, WithoutATraceTheCameraIsTheOneThatIsAttached) {
  const AttachedCamera attached{{"K1", "Kelva", "Camera", "1.00", "driver"}, boost::make_shared<FakeCamera>("K1")};
  const Session session(context_, attached);
  EXPECT_EQ(session.Attached().camera, attached.camera);
}

TEST_F(SessionTest, ATraceIsAroundIt) {
  const base::ScratchFolder folder;
  const Program program = {
      .name = "kelva", .version = "1", .summary = "", .description = "", .verbs = {}, .options = {}};
  Trace trace({(folder.Path() / "trace").string(), false}, program, "battery", nullptr);
  context_.trace = &trace;
  const AttachedCamera attached{{"K1", "Kelva", "Camera", "1.00", "driver"}, boost::make_shared<FakeCamera>("K1")};
  {
    const Session session(context_, attached);
    EXPECT_NE(session.Attached().camera, attached.camera);
    EXPECT_FALSE(session->CaptureImage(true));
  }
  context_.trace = nullptr;
  const std::string text = trace.Contents(10'000);
  EXPECT_NE(text.find("\"serial\":\"K1\",\"vendor\":\"Kelva\""), std::string::npos) << text;
  EXPECT_NE(text.find("\"command\":\"capture\""), std::string::npos) << text;
}

}  // namespace
}  // namespace apps
