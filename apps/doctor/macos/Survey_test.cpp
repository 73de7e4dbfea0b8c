#include "apps/doctor/macos/Survey.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include "darwin/registry/CameraEntries.h"
#include "darwin/registry/testing/RegistryFixture.h"

namespace apps::doctor::macos {
namespace {

using darwin::EntryDescription;
using darwin::EntryId;
using darwin::PropertyValue;
using testing::ElementsAre;
using testing::IsEmpty;

EntryDescription Service(const std::string& className, std::map<std::string, PropertyValue> properties = {}) {
  properties.emplace("IOClass", className);
  return {{className, "IOService", "IORegistryEntry"}, std::move(properties), {}};
}

/// The entries of a Mac. What a test adds goes with the USB devices.
class SurveyTest : public darwin::RegistryFixture {
 protected:
  void TearDown() override {
    for (const EntryId device : devices_) TheRegistry().Terminate(device);
    RegistryFixture::TearDown();
  }

  EntryId Add(EntryId parent, EntryDescription description) {
    const EntryId entry = TheRegistry().Add(parent, std::move(description));
    TheRegistry().RegisterService(entry);
    return entry;
  }
  EntryId AddUsbDevice(const std::string& serial, const std::string& vendor = "Kelva") {
    devices_.push_back(Add(TheRegistry().Root(),
                           Service("IOUSBHostDevice", {{"USB Vendor Name", vendor}, {"USB Serial Number", serial}})));
    return devices_.back();
  }
  EntryId AddInquiry(EntryId device, const std::string& revision = "1.00", const std::string& vendor = "Kelva") {
    return Add(device, Service("IOSCSIPeripheralDeviceNub",
                               {{"Vendor Identification", vendor}, {"Product Revision Level", revision}}));
  }
  EntryId AddDriver(EntryId inquiry, const std::string& className = "com_kelva_Glimmer") {
    return Add(inquiry, Service(className, {{"Vendor Identification", "Kelva"}}));
  }
  void AddClient(EntryId driver, const std::string& creator) {
    TheRegistry().Add(driver, Service("com_kelva_GlimmerUserClient", {{"IOUserClientCreator", creator}}));
  }

  std::vector<CameraFacts> Survey() {
    asked_ = 0;
    return SurveyRegistry([this](io_service_t service) {
      ++asked_;
      EXPECT_NE(service, 0U);
      return Answer::kAnswers;
    });
  }
  CameraFacts Only() {
    const auto cameras = Survey();
    EXPECT_EQ(cameras.size(), 1U);
    return cameras.empty() ? CameraFacts() : cameras.front();
  }

  int asked_ = 0;

 private:
  std::vector<EntryId> devices_;
};

TEST_F(SurveyTest, AMachineWithoutCamerasShowsNone) {
  AddUsbDevice("S", "Another maker");
  EXPECT_THAT(Survey(), IsEmpty());
}

TEST_F(SurveyTest, ACameraWithItsDriverIsAskedAndFoundOnce) {
  for (const char* driver : {"com_kelva_Glimmer", "com_kelva_Glimmer_ms"})
    AddDriver(AddInquiry(AddUsbDevice("K")), driver);
  const auto cameras = Survey();
  ASSERT_EQ(cameras.size(), 2U);
  EXPECT_EQ(asked_, 2);
  EXPECT_EQ(cameras[0].serial, "K");
  EXPECT_EQ(cameras[0].driver, "com_kelva_Glimmer");
  EXPECT_EQ(cameras[1].driver, "com_kelva_Glimmer_ms");
  for (const CameraFacts& camera : cameras) {
    EXPECT_TRUE(camera.isSetUp);
    EXPECT_TRUE(camera.namesVendor);
    EXPECT_EQ(camera.answer, Answer::kAnswers);
  }
}

TEST_F(SurveyTest, ADriverThatHidesTheVendorIsServedAllTheSame) {
  Add(AddInquiry(AddUsbDevice("K")), Service("com_kelva_Glimmer"));
  EXPECT_EQ(Only().driver, "com_kelva_Glimmer");
  EXPECT_FALSE(Only().namesVendor);
}

TEST_F(SurveyTest, ACameraWithoutADriverIsFoundByItsInquiryData) {
  AddInquiry(AddUsbDevice("K"));
  AddInquiry(AddUsbDevice("S", "Another maker"), "1.00", "Another");
  EXPECT_EQ(Only().serial, "K");
  EXPECT_TRUE(Only().isSetUp);
  EXPECT_EQ(Only().driver, "");
  EXPECT_EQ(asked_, 0);
}

TEST_F(SurveyTest, ACameraThatHasNotAnsweredIsFoundOnTheBus) {
  AddUsbDevice("K");
  EXPECT_EQ(Only().serial, "K");
  EXPECT_FALSE(Only().isSetUp);
}

TEST_F(SurveyTest, ACameraThatIsADiscIsFoundOnce) {
  const EntryId driver =
      TheRegistry().Add(AddInquiry(AddUsbDevice("K"), "Q42"), Service("IOSCSIPeripheralDeviceType05"));
  Add(driver, Service("IOCompactDiscServices"));
  EXPECT_TRUE(Only().isDisc);
  EXPECT_EQ(Only().serial, "K");
}

TEST_F(SurveyTest, AnotherDiscDriveIsNoCamera) {
  const EntryId inquiry = AddInquiry(AddUsbDevice("S", "Another maker"), "Q42", "Another");
  Add(TheRegistry().Add(inquiry, Service("IOSCSIPeripheralDeviceType05")), Service("IOCompactDiscServices"));
  EXPECT_THAT(Survey(), IsEmpty());
}

TEST_F(SurveyTest, WhoHasTheDriverOpenIsNamedAndTheCameraIsLeftAlone) {
  const EntryId driver = AddDriver(AddInquiry(AddUsbDevice("K")));
  AddClient(driver, "pid 508, photos");
  AddClient(driver, "pid 508, photos");
  AddClient(driver, "pid 509, kelva");
  EXPECT_THAT(Only().holders, ElementsAre(Holder{508, "photos"}, Holder{509, "kelva"}));
  EXPECT_EQ(Only().answer, Answer::kNotAsked);
  EXPECT_EQ(asked_, 0);
}

TEST_F(SurveyTest, ThisProcessItselfIsNoHolder) {
  AddClient(AddDriver(AddInquiry(AddUsbDevice("K"))), "pid " + std::to_string(::getpid()) + ", kelva");
  EXPECT_THAT(Only().holders, IsEmpty());
  EXPECT_EQ(asked_, 1);
}

TEST_F(SurveyTest, TheHoldersOfACameraAreFoundByItsSerialNumber) {
  AddClient(AddDriver(AddInquiry(AddUsbDevice("K1"))), "pid 508, photos");
  AddClient(AddDriver(AddInquiry(AddUsbDevice("K2"))), "pid 509, kelva");
  EXPECT_THAT(HoldersBySerial("K2"), ElementsAre(Holder{509, "kelva"}));
  EXPECT_THAT(HoldersBySerial("K3"), IsEmpty());
  EXPECT_THAT(HoldersBySerial(""), IsEmpty());
}

TEST(ReadCreatorTest, ACreatorIsANumberAndAName) {
  EXPECT_EQ(ReadCreator("pid 508, kelva"), (Holder{508, "kelva"}));
  EXPECT_EQ(ReadCreator("pid 508, a, b"), (Holder{508, "a, b"}));
}

TEST(ReadCreatorTest, AProcessWithoutANameIsAProcess) {
  for (const char* text : {"pid 508", "pid 508, ", "pid 508,", "pid 508 kelva"}) {
    EXPECT_EQ(ReadCreator(text), (Holder{508, "a process"})) << text;
  }
}

TEST(ReadCreatorTest, AnotherTextNamesNobody) {
  for (const char* text :
       {"", "pid", "pid ", "pid x", "pid 0, kernel", "pid -1, x", "pid 99999999999999999999, x", "kelva"}) {
    EXPECT_EQ(ReadCreator(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace apps::doctor::macos
