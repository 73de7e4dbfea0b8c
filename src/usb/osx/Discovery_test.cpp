#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/FakeCalls.h"
#include "testing/OsxCameraState.h"

// Which cameras are attached now, and whether one carries a serial number.

namespace {

using Log = std::vector<std::string>;
using Cameras = std::vector<boost::shared_ptr<Camera>>;

class Enumeration : public fake::Test {
 protected:
  ~Enumeration() override { EXPECT_TRUE(framework().OpenHandles().empty()); }

  // The cameras, known by the serial numbers that they answer to; and what was printed.
  std::vector<std::string> Serials(const Cameras& cameras) {
    std::vector<std::string> serials;
    for (const auto& camera : cameras) {
      for (const char* const serial : {"one", "two", "three", "other"}) {
        if (camera->CompareSn(serial)) serials.emplace_back(serial);
      }
    }
    return serials;
  }
  std::vector<std::string> Enumerate(bool anyVendor) {
    testing::internal::CaptureStdout();
    const Cameras cameras = OsxCamera::EnumerateOsxCameras(anyVendor);
    printed_ = testing::internal::GetCapturedStdout();
    searches_ = log();
    return Serials(cameras);
  }
  std::string printed_;
  Log searches_;
};

TEST_F(Enumeration, WithoutACameraIsEmptyAndPrintsNothing) {
  EXPECT_TRUE(Enumerate(false).empty());
  EXPECT_EQ(printed_, "");
  EXPECT_EQ(searches_.front(), "Search com_kelva_Glimmer");
}

TEST_F(Enumeration, ListsTheFirstDriversCamerasFirst) {
  AddCamera("two", "com_kelva_Glimmer_ms");
  AddCamera("one");
  AddCamera("three");
  EXPECT_EQ(Enumerate(false), (std::vector<std::string>{"one", "three", "two"}));
}

TEST_F(Enumeration, SearchesEachDriverNameAndReleasesTheIterator) {
  AddCamera("one");
  AddCamera("two", "com_kelva_Glimmer_ms");
  Enumerate(true);
  EXPECT_EQ(searches_, (Log{"Search com_kelva_Glimmer", "Next one", "Next none", "Release iterator",
                            "Search com_kelva_Glimmer_ms", "Next two", "Next none", "Release iterator"}));
}

TEST_F(Enumeration, WithoutTheFlagListsThisMakersOnly) {
  AddCamera("one");
  AddCamera("other", "com_kelva_Glimmer", "Others");
  EXPECT_EQ(Enumerate(false), std::vector<std::string>{"one"});
}

TEST_F(Enumeration, WithTheFlagListsEveryVendors) {
  AddCamera("one");
  AddCamera("other", "com_kelva_Glimmer", "Others");
  EXPECT_EQ(Enumerate(true), (std::vector<std::string>{"one", "other"}));
}

TEST_F(Enumeration, GivesClosedCamerasThatNobodyElseHolds) {
  AddCamera("one");
  const Cameras cameras = OsxCamera::EnumerateOsxCameras(false);
  ASSERT_EQ(cameras.size(), 1u);
  EXPECT_FALSE(cameras[0]->IsOpen());
  EXPECT_EQ(cameras[0].use_count(), 1);
}

TEST_F(Enumeration, EachOneMakesObjectsOfItsOwn) {
  AddCamera("one");
  const Cameras first = OsxCamera::EnumerateOsxCameras(false);
  const Cameras second = OsxCamera::EnumerateOsxCameras(false);
  EXPECT_NE(first.at(0), second.at(0));
}

TEST_F(Enumeration, AFailedFirstSearchPrintsItsCodeAndEndsIt) {
  AddCamera("two", "com_kelva_Glimmer_ms");
  framework().results["IOServiceGetMatchingServices"] = {kIOReturnError};
  EXPECT_TRUE(Enumerate(false).empty());
  EXPECT_EQ(printed_, "IOServiceGetMatchingServices() FAILED = 0xe00002bc\n");
  EXPECT_EQ(searches_, Log{"Search com_kelva_Glimmer"});
}

TEST_F(Enumeration, AFailedSecondSearchKeepsWhatWasFound) {
  AddCamera("one");
  framework().results["IOServiceGetMatchingServices"] = {KERN_SUCCESS, 0xF};
  EXPECT_EQ(Enumerate(false), std::vector<std::string>{"one"});
  EXPECT_EQ(printed_, "IOServiceGetMatchingServices() FAILED = 0xf\n");
}

TEST_F(Enumeration, NeverThrowsWhateverTheSwitchSays) {
  framework().results["IOServiceGetMatchingServices"] = {kIOReturnError};
  testing::internal::CaptureStdout();
  EXPECT_NO_THROW(OsxCamera::EnumerateOsxCameras(true));
  testing::internal::GetCapturedStdout();
}

class Serial : public fake::Test {
 protected:
  bool Compare(io_service_t service, const char* serial) {
    const OsxCamera camera(framework().Hand(service));
    log().clear();
    const bool found = camera.CompareSn(serial);
    walk_ = log();
    return found;
  }
  ~Serial() override { EXPECT_TRUE(framework().OpenHandles().empty()); }
  Log walk_;
};

TEST_F(Serial, IsFoundOnAnAncestor) {
  EXPECT_TRUE(Compare(AddCamera("A1"), "A1"));
  EXPECT_EQ(walk_, (Log{"Retain A1", "Property USB Serial Number of A1", "Parent of A1", "Release A1",
                        "Property USB Serial Number of A1's inquiry", "Parent of A1's inquiry", "Release A1's inquiry",
                        "Property USB Serial Number of A1's device", "Equal A1 A1", "Parent of A1's device",
                        "Release A1's device"}));
}

TEST_F(Serial, IsMadeInMacRomanOnce) {
  Compare(AddCamera("A1"), "A\xE9");
  ASSERT_FALSE(framework().strings.empty());
  EXPECT_EQ(framework().strings.front(),
            (std::pair<std::string, CFStringEncoding>("A\xE9", kCFStringEncodingMacRoman)));
}

TEST_F(Serial, IsExactAndCaseSensitive) {
  const io_service_t service = AddCamera("A1");
  EXPECT_FALSE(Compare(service, "a1"));
  EXPECT_FALSE(Compare(service, "A1 "));
  EXPECT_FALSE(Compare(service, "A"));
  EXPECT_FALSE(Compare(service, ""));
}

// A match does not end the walk, and a later entry with another number does not take it back.
TEST_F(Serial, TheWalkGoesUpToTheRoot) {
  const io_object_t root = framework().Add({"root", "", 0, {}});
  const io_object_t hub = framework().Add({"hub", "", root, {{"USB Serial Number", "HUB"}}});
  const io_service_t service = framework().Add({"camera", "", hub, {{"USB Serial Number", "A1"}}});
  EXPECT_TRUE(Compare(service, "A1"));
  EXPECT_EQ(walk_.back(), "Release root");
  EXPECT_TRUE(Compare(service, "HUB"));
  EXPECT_FALSE(Compare(service, "B2"));
}

TEST_F(Serial, WithoutAnySerialIsNotFound) {
  EXPECT_FALSE(Compare(framework().Add({"camera", "", 0, {}}), "A1"));
}

}  // namespace
