#include "tests/stack/PlugTest.h"

// Who is there, who comes and who goes, as an application is told.

namespace tests::stack {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

// What the listeners were told. Registrations last for the process's life, so there is one for all tests.
struct Told {
  std::vector<boost::shared_ptr<Camera>> attached;
  int bad = 0;
};

Told& TheTold() {
  static Told told;
  return told;
}

void OnAttach(boost::shared_ptr<Camera> camera, void*) {
  TheTold().attached.push_back(camera);
}
void OnBadCamera(void*) {
  ++TheTold().bad;
}

class Discovery : public PlugTest {
 protected:
  Discovery() {
    static const bool listening = (Camera::ListenForCameraAttach(&OnAttach, nullptr, false),
                                   Camera::ListenForBadCameraAttach(&OnBadCamera, nullptr), true);
    EXPECT_TRUE(listening);
    TheTold() = {};
  }
  ~Discovery() override { TheTold() = {}; }
};

TEST_F(Discovery, WithoutACameraNothingIsFound) {
  EXPECT_THAT(Enumerate(), IsEmpty());
}

TEST_F(Discovery, EveryCameraIsFoundOnce) {
  Plug("A");
  Plug("B");
  EXPECT_THAT(Enumerate(), SizeIs(2));
}

TEST_F(Discovery, ACameraIsChosenByItsSerialNumber) {
  Plug("A");
  Plug("B");
  const auto camera = Camera::GetCamera("B", "", false, false);
  EXPECT_TRUE(camera->CompareSn("B"));
  EXPECT_FALSE(camera->CompareSn("A"));
}

TEST_F(Discovery, AnUnknownSerialNumberIsAnError) {
  Plug("A");
  try {
    Camera::GetCamera("Z", "", false, false);
    FAIL() << "found";
  } catch (const CameraError& error) {
    EXPECT_STREQ(error.what(), "Camera error: Camera not found.");
  }
}

TEST_F(Discovery, ACameraThatTheDiskDriverTookComesLastAndFailsTheInquiryCheck) {
  auto disk = CameraOptions("DISK");
  disk.peripheralType = 0;
  Plug(disk);
  Plug("A");
  const auto cameras = Enumerate();
  ASSERT_THAT(cameras, SizeIs(2));
  EXPECT_TRUE(cameras[0]->CompareSn("A"));
  EXPECT_TRUE(cameras[0]->IsScsiInquiryCorrect());
  EXPECT_TRUE(cameras[1]->CompareSn("DISK"));
  EXPECT_FALSE(cameras[1]->IsScsiInquiryCorrect());
}

TEST_F(Discovery, AnAttachedCameraIsReportedOnce) {
  Plug("A");
  ASSERT_TRUE(PumpUntil([] { return !TheTold().attached.empty(); }));
  Settle();
  ASSERT_THAT(TheTold().attached, SizeIs(1));
  EXPECT_TRUE(TheTold().attached[0]->CompareSn("A"));
  EXPECT_FALSE(TheTold().attached[0]->IsOpen());
}

TEST_F(Discovery, EveryPlugIsReportedAgain) {
  for (int plugs = 1; plugs <= 3; ++plugs) {
    Plug("A");
    EXPECT_TRUE(PumpUntil([&] { return TheTold().attached.size() == static_cast<std::size_t>(plugs); }));
    Unplug("A");
  }
  EXPECT_THAT(TheTold().attached, SizeIs(3));
  EXPECT_THAT(Enumerate(), IsEmpty());
}

TEST_F(Discovery, AnotherCameraInItsPlaceIsAnotherCamera) {
  Plug("A");
  Unplug("A");
  Plug("B");
  ASSERT_TRUE(PumpUntil([] { return TheTold().attached.size() == 2; }));
  const auto cameras = Enumerate();
  ASSERT_THAT(cameras, SizeIs(1));
  EXPECT_TRUE(cameras[0]->CompareSn("B"));
}

TEST_F(Discovery, ACompactDiscOfTheBadRevisionIsABadCameraAndNoCamera) {
  auto bad = CameraOptions("BAD");
  bad.peripheralType = 5;
  bad.revision = "Q42";
  Plug(bad);
  EXPECT_TRUE(PumpUntil([] { return TheTold().bad == 1; }));
  EXPECT_THAT(Enumerate(), IsEmpty());
  EXPECT_THAT(TheTold().attached, IsEmpty());
}

TEST_F(Discovery, ACompactDiscOfAnotherRevisionIsNoBadCamera) {
  auto disc = CameraOptions("DISC");
  disc.peripheralType = 5;
  disc.revision = "Q43";
  Plug(disc);
  EXPECT_TRUE(PumpUntil([] { return !TheTold().attached.empty(); }));
  EXPECT_EQ(TheTold().bad, 0);
  EXPECT_THAT(Enumerate(), SizeIs(1));
}

/// What the callback of a lost camera saw; its address is the callback's context.
struct Loss {
  static void OnLost(void* context) {
    auto& self = *static_cast<Loss*>(context);
    ++self.calls;
    self.disconnectedInside = self.camera->WasDisconnected();
    if (self.drops) self.camera.reset();
  }
  boost::shared_ptr<Camera> camera;
  bool drops = false;
  int calls = 0;
  bool disconnectedInside = true;
};

TEST_F(Discovery, ALostCameraTellsItsOwnerOnce) {
  Plug("A");
  Loss loss{Enumerate().at(0)};
  loss.camera->ListenForCameraLost(Loss::OnLost, &loss);
  Unplug("A");
  EXPECT_TRUE(PumpUntil([&] { return loss.calls > 0; }));
  Settle();
  EXPECT_EQ(loss.calls, 1);
  EXPECT_FALSE(loss.disconnectedInside);
  EXPECT_TRUE(loss.camera->WasDisconnected());
}

TEST_F(Discovery, AnOwnerMayDropTheCameraInItsCallback) {
  Loss loss{PlugAndOpen("A"), true};
  TheTold() = {};
  loss.camera->ListenForCameraLost(Loss::OnLost, &loss);
  Unplug("A");
  EXPECT_TRUE(PumpUntil([&] { return loss.calls > 0; }));
  EXPECT_FALSE(loss.camera);
}

}  // namespace
}  // namespace tests::stack
