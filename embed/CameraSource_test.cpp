#include "embed/CameraSource.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "Camera.h"
#include "darwin/registry/Registry.h"

namespace kelva {
namespace {

/// A source without cameras, whose first call fails or which hears of no change.
class PoorSource : public darwin::RegistrySource {
 public:
  PoorSource(std::string failure, std::string deaf) : failure_(std::move(failure)), deaf_(std::move(deaf)) {}
  void Start(darwin::Registry&) override {
    if (!failure_.empty()) throw std::runtime_error(failure_);
  }
  int Descriptor() const override { return -1; }
  void Dispatch(darwin::Registry&) override {}
  std::string WhyDeaf() const override { return deaf_; }

 private:
  std::string failure_;
  std::string deaf_;
};

class LastSourceErrorTest : public testing::Test {
 protected:
  ~LastSourceErrorTest() override { darwin::Registry::Shared().SetSource(nullptr); }
  static void Use(const std::string& failure, const std::string& deaf) {
    darwin::Registry::Shared().SetSource(std::make_unique<PoorSource>(failure, deaf));
  }
  static void Look() {
    try {
      Camera::EnumerateCameras(false, "", false, 0);
    } catch (const CameraError&) {
      // What a source's failure looks like to a caller; the sentence is asked for below.
    }
  }
};

TEST_F(LastSourceErrorTest, IsEmptyWithoutAFailure) {
  EXPECT_EQ(LastSourceError(), "");
  Use("", "");
  Look();
  EXPECT_EQ(LastSourceError(), "");
}

TEST_F(LastSourceErrorTest, SaysWhyTheSourceFailed) {
  Use("No udev.", "Nobody listens.");
  Look();
  EXPECT_EQ(LastSourceError(), "No udev.");
}

TEST_F(LastSourceErrorTest, SaysThatChangesGoUnnoticedOnceTheSourceHasStarted) {
  Use("", "Nobody listens.");
  EXPECT_EQ(LastSourceError(), "");
  Look();
  EXPECT_EQ(LastSourceError(), "Nobody listens.");
}

}  // namespace
}  // namespace kelva
