#include "apps/doctor/linux/Diagnosis.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

namespace apps::doctor {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

CameraFacts HealthyCamera() {
  CameraFacts camera;
  camera.serial = "SN1";
  camera.usbPath = "/sys/devices/usb1/1-1";
  camera.driverBound = true;
  camera.unitPath = "/sys/devices/usb1/1-1/1-1:1.0/host0/target0:0:0/0:0:0:0";
  camera.peripheralType = 3;
  camera.revision = "1.00";
  camera.maxSectors = 240;
  camera.node = "/dev/sg3";
  camera.major = 21;
  camera.minor = 3;
  camera.answer = Answer::kAnswers;
  return camera;
}

MachineFacts With(const CameraFacts& camera) {
  MachineFacts facts;
  facts.cameras = {camera};
  facts.udevRuns = true;
  facts.rulesFile = "/usr/lib/udev/rules.d/70-kelva.rules";
  facts.user = "ann";
  facts.userInPlugdev = true;
  return facts;
}

Finding Only(const MachineFacts& facts) {
  const auto findings = Diagnose(facts);
  EXPECT_EQ(findings.size(), 1U);
  return findings.front();
}

TEST(DiagnosisTest, AHealthyCameraIsWell) {
  const Finding finding = Only(With(HealthyCamera()));
  EXPECT_EQ(finding.condition, Condition::kWell);
  EXPECT_EQ(finding.serial, "SN1");
  EXPECT_THAT(finding.command, IsEmpty());
}

TEST(DiagnosisTest, WithoutACameraItSaysSo) {
  MachineFacts facts;
  facts.udevRuns = true;
  EXPECT_EQ(Only(facts).condition, Condition::kNoDevice);
  EXPECT_THAT(Only(facts).advice, HasSubstr("`journalctl -k -f`"));
}

TEST(DiagnosisTest, ADeviceThatNoDriverTookNeedsTheStorageDriver) {
  CameraFacts camera;
  camera.usbPath = "/sys/devices/usb1/1-1";
  const Finding finding = Only(With(camera));
  EXPECT_EQ(finding.condition, Condition::kDriverNotLoaded);
  EXPECT_EQ(finding.command, "sudo modprobe usb-storage");
}

TEST(DiagnosisTest, ABoundDeviceWithoutAUnitIsNotSetUp) {
  CameraFacts camera;
  camera.usbPath = "/sys/devices/usb1/1-1";
  camera.driverBound = true;
  EXPECT_EQ(Only(With(camera)).condition, Condition::kNotSetUp);
}

TEST(DiagnosisTest, AUnitWithoutANodeNeedsTheGenericDriver) {
  CameraFacts camera = HealthyCamera();
  camera.node.clear();
  const Finding finding = Only(With(camera));
  EXPECT_EQ(finding.condition, Condition::kNoGenericDriver);
  EXPECT_EQ(finding.command, "sudo modprobe sg");
}

TEST(DiagnosisTest, ANodeThatIsMissingHereIsMadeWithItsNumbers) {
  CameraFacts camera = HealthyCamera();
  camera.nodeError = ENOENT;
  const Finding finding = Only(With(camera));
  EXPECT_EQ(finding.condition, Condition::kNoNode);
  EXPECT_EQ(finding.command, "sudo mknod -m 0666 /dev/sg3 c 21 3");
  EXPECT_THAT(finding.advice, HasSubstr("--device=/dev/sg3"));
}

TEST(DiagnosisTest, WithoutRulesThePermissionIsGivenToTheNode) {
  CameraFacts camera = HealthyCamera();
  camera.nodeError = EACCES;
  MachineFacts facts = With(camera);
  facts.rulesFile.clear();
  const Finding finding = Only(facts);
  EXPECT_EQ(finding.condition, Condition::kNoPermission);
  EXPECT_EQ(finding.command, "sudo setfacl -m u:ann:rw /dev/sg3");
}

TEST(DiagnosisTest, AUserOutsideTheGroupIsAddedToIt) {
  CameraFacts camera = HealthyCamera();
  camera.nodeError = EACCES;
  MachineFacts facts = With(camera);
  facts.userInPlugdev = false;
  EXPECT_EQ(Only(facts).command, "sudo usermod -aG plugdev ann");
}

TEST(DiagnosisTest, RulesThatDidNotRunAreRunAgain) {
  CameraFacts camera = HealthyCamera();
  camera.nodeError = EACCES;
  EXPECT_EQ(Only(With(camera)).command,
            "sudo udevadm control --reload && sudo udevadm trigger --action=change /dev/sg3");
}

TEST(DiagnosisTest, AHeldCameraNamesWhoHoldsIt) {
  CameraFacts camera = HealthyCamera();
  camera.holders = {{1234, "kelva"}, {99, "other"}};
  const Finding finding = Only(With(camera));
  EXPECT_EQ(finding.condition, Condition::kHeld);
  EXPECT_EQ(finding.sentence, "The camera is held by kelva (process 1234), other (process 99).");
  EXPECT_EQ(finding.command, "kill 1234");
}

TEST(DiagnosisTest, ABadCameraIsOneWhateverElseHolds) {
  CameraFacts camera = HealthyCamera();
  camera.peripheralType = 5;
  camera.revision = "Q42";
  camera.node.clear();
  camera.disc = "/dev/sr1";
  const Finding finding = Only(With(camera));
  EXPECT_EQ(finding.condition, Condition::kBadCamera);
  EXPECT_EQ(finding.command, "sudo eject /dev/sr1");
}

TEST(DiagnosisTest, ACompactDiscOfAnotherRevisionIsACamera) {
  CameraFacts camera = HealthyCamera();
  camera.peripheralType = 5;
  EXPECT_EQ(Only(With(camera)).condition, Condition::kWell);
}

TEST(DiagnosisTest, ASilentCameraAndAFailingOneAreNotAnswering) {
  CameraFacts camera = HealthyCamera();
  camera.answer = Answer::kSilent;
  EXPECT_EQ(Only(With(camera)).sentence, "The camera does not answer.");
  camera.answer = Answer::kFails;
  const Finding finding = Only(With(camera));
  EXPECT_EQ(finding.condition, Condition::kNotAnswering);
  EXPECT_EQ(finding.command,
            "echo 0 | sudo tee /sys/devices/usb1/1-1/authorized && echo 1 | sudo tee /sys/devices/usb1/1-1/authorized");
  camera.usbPath.clear();
  EXPECT_THAT(Only(With(camera)).command, IsEmpty());
}

TEST(DiagnosisTest, ALimitBelowAChunkIsRaised) {
  CameraFacts camera = HealthyCamera();
  camera.maxSectors = 64;
  const Finding finding = Only(With(camera));
  EXPECT_EQ(finding.condition, Condition::kNarrow);
  EXPECT_THAT(finding.sentence, HasSubstr("only 32768 bytes"));
  EXPECT_EQ(finding.command, "echo 128 | sudo tee /sys/devices/usb1/1-1/1-1:1.0/host0/target0:0:0/0:0:0:0/max_sectors");
}

TEST(DiagnosisTest, EachCameraHasItsOwnFindingAndTheMachineComesLast) {
  CameraFacts second = HealthyCamera();
  second.serial = "SN2";
  second.nodeError = EACCES;
  MachineFacts facts = With(HealthyCamera());
  facts.cameras.push_back(second);
  facts.udevRuns = false;
  const auto findings = Diagnose(facts);
  ASSERT_EQ(findings.size(), 3U);
  EXPECT_EQ(findings[0].condition, Condition::kWell);
  EXPECT_EQ(findings[1].serial, "SN2");
  EXPECT_EQ(findings[2].condition, Condition::kNoUdev);
}

}  // namespace
}  // namespace apps::doctor
