#include "Camera.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <boost/weak_ptr.hpp>
#include <string>
#include <vector>

#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace {

using wifi_testing::ExceptionsOff;
using wifi_testing::ScriptedCamera;
using wifi_testing::Thrown;

// The platform of this program: the cameras of `attached`, and what EnumerateCameras was asked.
struct Platform {
  std::vector<boost::shared_ptr<Camera>> attached;
  int enumerations = 0;
  bool allVendors = false;
  std::string text;
  bool second = false;
  int number = 0;
  bool throws = false;
};

Platform* platform = nullptr;

class CameraWithSerial : public ScriptedCamera {
 public:
  CameraWithSerial(std::string serial, std::vector<std::string>* asked) : serial_(std::move(serial)), asked_(asked) {}
  bool CompareSn(const char* serial) const override {
    asked_->push_back(serial_);
    return serial_ == serial;
  }

 private:
  std::string serial_;
  std::vector<std::string>* asked_;
};

class GetCamera : public testing::Test {
 protected:
  GetCamera() { platform = &platform_; }
  ~GetCamera() override { platform = nullptr; }

  boost::shared_ptr<Camera> Attach(const std::string& serial) {
    platform_.attached.push_back(boost::make_shared<CameraWithSerial>(serial, &asked_));
    return platform_.attached.back();
  }

  Platform platform_;
  std::vector<std::string> asked_;
};

}  // namespace

std::vector<boost::shared_ptr<Camera>> Camera::EnumerateCameras(bool allVendors, std::string text, bool second,
                                                                int number) {
  ++platform->enumerations;
  platform->allVendors = allVendors;
  platform->text = text;
  platform->second = second;
  platform->number = number;
  if (platform->throws) throw CameraTransferError("enumeration");
  return std::move(platform->attached);
}
void Camera::ListenForCameraAttach(void (*)(boost::shared_ptr<Camera>, void*), void*, bool) {}
void Camera::ListenForBadCameraAttach(void (*)(void*), void*) {}

namespace {

TEST_F(GetCamera, FindsTheCameraWithTheSerialNumber) {
  Attach("1");
  const boost::shared_ptr<Camera> wanted = Attach("2");
  Attach("3");
  EXPECT_EQ(Camera::GetCamera("2", "", false, false), wanted);
}

TEST_F(GetCamera, OfTwoThatMatchTakesTheFirstAndAsksNoFurther) {
  const boost::shared_ptr<Camera> first = Attach("7");
  Attach("7");
  EXPECT_EQ(Camera::GetCamera("7", "", false, false), first);
  EXPECT_EQ(asked_, std::vector<std::string>{"7"});
}

TEST_F(GetCamera, AsksForAllVendorsAndPassesTheRestUnchanged) {
  Attach("1");
  Camera::GetCamera("1", "any text", true, true);
  EXPECT_EQ(platform_.enumerations, 1);
  EXPECT_TRUE(platform_.allVendors);
  EXPECT_EQ(platform_.text, "any text");
  EXPECT_TRUE(platform_.second);
  EXPECT_EQ(platform_.number, 1);

  Attach("1");
  Camera::GetCamera("1", "", false, false);
  EXPECT_FALSE(platform_.second);
  EXPECT_EQ(platform_.number, 0);
}

TEST_F(GetCamera, ReleasesEveryOtherCamera) {
  const boost::weak_ptr<Camera> other = Attach("1");
  const boost::weak_ptr<Camera> wanted = Attach("2");
  const boost::shared_ptr<Camera> found = Camera::GetCamera("2", "", false, false);
  EXPECT_TRUE(other.expired());
  EXPECT_EQ(wanted.use_count(), 1);
}

TEST_F(GetCamera, OpensNothing) {
  Attach("1");
  const boost::shared_ptr<Camera> found = Camera::GetCamera("1", "", false, false);
  EXPECT_EQ(static_cast<CameraWithSerial&>(*found).calls, wifi_testing::Calls{});
}

TEST_F(GetCamera, WithoutACameraThrowsNotFound) {
  EXPECT_EQ(Thrown([] { Camera::GetCamera("1", "", false, false); }), "CameraError: Camera error: Camera not found.");
}

TEST_F(GetCamera, WithoutAMatchThrowsNotFound) {
  Attach("2");
  EXPECT_EQ(Thrown([] { Camera::GetCamera("1", "", false, false); }), "CameraError: Camera error: Camera not found.");
}

TEST_F(GetCamera, WithExceptionsOffReturnsAnEmptyPointer) {
  const ExceptionsOff off;
  EXPECT_FALSE(Camera::GetCamera("1", "", false, false));
  Attach("2");
  EXPECT_FALSE(Camera::GetCamera("1", "", false, false));
}

TEST_F(GetCamera, ErrorsOfTheEnumerationPass) {
  platform_.throws = true;
  const ExceptionsOff off;
  EXPECT_EQ(Thrown([] { Camera::GetCamera("1", "", false, false); }), "CameraTransferError: Camera error: enumeration");
}

TEST_F(GetCamera, ANullEntryStopsTheProcess) {
  platform_.attached.emplace_back();
  EXPECT_EXIT(Camera::GetCamera("1", "", false, false), testing::KilledBySignal(SIGABRT), "");
}

}  // namespace
