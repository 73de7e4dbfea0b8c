#include "apps/camera/LastingSession.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <memory>

#include "apps/commandline/Failure.h"
#include "apps/commandline/testing/SilentContext.h"
#include "base/testing/ScratchFolder.h"
#include "darwin/virtual/VirtualRegistry.h"
#include "vcam/camera/InProcess.h"

namespace apps {
namespace {

class LastingSessionTest : public testing::Test, protected SilentContext {
 protected:
  LastingSessionTest() { k1_ = Attach("K1"); }

  darwin::EntryId Attach(const std::string& serial) {
    vcam::Options options;
    options.serial = serial;
    options.storage = storage_.Path();
    darwin::CameraDescription description{serial, "Kelva", "Camera", "1.00", 3, {}};
    description.openUserClient = vcam::OpenInProcess(std::make_shared<vcam::VirtualCamera>(options));
    return registry_.AttachCamera(description);
  }

  const base::ScratchFolder storage_;
  darwin::VirtualRegistry registry_;
  darwin::EntryId k1_{};
};

TEST_F(LastingSessionTest, TheCameraIsOpenedAgainWhenItIsBack) {
  LastingSession session(context_);
  EXPECT_TRUE(session.IsReady());
  registry_.Detach(k1_);
  EXPECT_FALSE(session.IsReady());
  EXPECT_FALSE(session.IsOpen());
  Attach("K1");
  EXPECT_FALSE(session.IsReady()) << "it is opened now and asked the next time";
  EXPECT_TRUE(session.IsReady());
  EXPECT_EQ(session.Current().Facts().serial, "K1");
}

TEST_F(LastingSessionTest, AnotherCameraDoesNotTakeItsPlace) {
  LastingSession session(context_);
  registry_.Detach(k1_);
  Attach("K2");
  for (int i = 0; i < 3; ++i) {
    EXPECT_FALSE(session.IsReady());
  }
  EXPECT_FALSE(session.IsOpen());
}

TEST_F(LastingSessionTest, ACameraThatWentAwayHasRestarted) {
  LastingSession session(context_);
  registry_.Detach(k1_);
  EXPECT_NO_THROW(session.WaitUntilGone(0));
}

TEST_F(LastingSessionTest, ACountThatBeganAnewShowsARestartThatNobodySaw) {
  LastingSession session(context_);
  EXPECT_NO_THROW(session.WaitUntilGone(1'000'000));
  EXPECT_TRUE(session.IsOpen());
}

TEST_F(LastingSessionTest, ARequestToStopEndsTheWait) {
  LastingSession session(context_);
  stop_.Request();
  EXPECT_THROW(session.WaitUntilGone(0), Stopped);
  session.Drop();
  EXPECT_THROW(session.WaitUntilReady(), Stopped);
}

}  // namespace
}  // namespace apps
