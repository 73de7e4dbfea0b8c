#include "apps/doctor/macos/Diagnosis.h"

#include <gmock/gmock.h>

namespace apps::doctor::macos {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

CameraFacts HealthyCamera() {
  return {.serial = "SN1",
          .isSetUp = true,
          .isDisc = false,
          .driver = "com_kelva_Glimmer",
          .namesVendor = true,
          .holders = {},
          .answer = Answer::kAnswers};
}

Finding Only(const CameraFacts& camera) {
  const auto findings = Diagnose({camera});
  EXPECT_EQ(findings.size(), 1U);
  EXPECT_EQ(findings.front().serial, "SN1");
  return findings.front();
}

TEST(MacDiagnosisTest, AHealthyCameraIsWell) {
  const Finding finding = Only(HealthyCamera());
  EXPECT_EQ(finding.condition, Condition::kWell);
  EXPECT_THAT(finding.command, IsEmpty());
  EXPECT_THAT(finding.advice, IsEmpty());
}

TEST(MacDiagnosisTest, WithoutACameraItSaysWhatMayHideOne) {
  const auto findings = Diagnose({});
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_EQ(findings.front().condition, Condition::kNoDevice);
  EXPECT_THAT(findings.front().advice, AllOf(HasSubstr("Allow accessories to connect"), HasSubstr("screen is locked")));
}

TEST(MacDiagnosisTest, ADeviceThatHasNotAnsweredIsNotSetUp) {
  CameraFacts camera = HealthyCamera();
  camera.isSetUp = false;
  camera.driver.clear();
  EXPECT_EQ(Only(camera).condition, Condition::kNotSetUp);
}

TEST(MacDiagnosisTest, ADiscDriveIsABadCamera) {
  CameraFacts camera = HealthyCamera();
  camera.isDisc = true;
  camera.driver.clear();
  EXPECT_EQ(Only(camera).condition, Condition::kBadCamera);
  EXPECT_THAT(Only(camera).sentence, HasSubstr("Q42"));
}

TEST(MacDiagnosisTest, WithoutTheDriverItSaysHowToAllowIt) {
  CameraFacts camera = HealthyCamera();
  camera.driver.clear();
  EXPECT_EQ(Only(camera).condition, Condition::kDriverNotLoaded);
  EXPECT_THAT(Only(camera).advice, AllOf(HasSubstr("Privacy & Security"), HasSubstr("Reduced Security")));
}

TEST(MacDiagnosisTest, ADriverThatHidesTheVendorMakesTheListEmpty) {
  CameraFacts camera = HealthyCamera();
  camera.namesVendor = false;
  EXPECT_EQ(Only(camera).condition, Condition::kNoVendor);
  EXPECT_THAT(Only(camera).sentence, AllOf(HasSubstr("`kelva list`"), HasSubstr("agent works")));
  EXPECT_THAT(Only(camera).advice, HasSubstr("`ioreg -r -l -c com_kelva_Glimmer`"));
  EXPECT_FALSE(IsHarmless(Condition::kNoVendor));
}

TEST(MacDiagnosisTest, AHeldCameraNamesItsHolders) {
  CameraFacts camera = HealthyCamera();
  camera.holders = {{508, "photos"}, {509, "kelva"}};
  EXPECT_EQ(Only(camera).condition, Condition::kHeld);
  EXPECT_EQ(Only(camera).sentence, "The camera is held by photos (process 508), kelva (process 509).");
  EXPECT_EQ(Only(camera).command, "kill 508");
}

TEST(MacDiagnosisTest, ACameraThatDoesNotAnswerIsToldFromADriverThatRefuses) {
  CameraFacts camera = HealthyCamera();
  camera.answer = Answer::kFails;
  EXPECT_EQ(Only(camera).condition, Condition::kNotAnswering);
  EXPECT_THAT(Only(camera).sentence, Not(HasSubstr("driver")));
  camera.answer = Answer::kRefused;
  EXPECT_EQ(Only(camera).condition, Condition::kNotAnswering);
  EXPECT_THAT(Only(camera).sentence, HasSubstr("driver begins no session"));
}

TEST(MacDiagnosisTest, EachCameraHasAFinding) {
  CameraFacts bare = HealthyCamera();
  bare.isSetUp = false;
  const auto findings = Diagnose({HealthyCamera(), bare});
  ASSERT_EQ(findings.size(), 2U);
  EXPECT_EQ(findings[0].condition, Condition::kWell);
  EXPECT_EQ(findings[1].condition, Condition::kNotSetUp);
}

}  // namespace
}  // namespace apps::doctor::macos
