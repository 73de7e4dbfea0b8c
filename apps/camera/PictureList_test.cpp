#include "apps/camera/PictureList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/commandline/Failure.h"

namespace apps {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

/// A camera whose catalogue is a header and records of zeros, as many as asked for.
class CatalogueCamera final : public FakeCamera {
 public:
  CatalogueCamera(char strideLow, char strideHigh, std::size_t recordBytes)
      : answer_{1, 0, 0, 0, strideLow, strideHigh, 0, 0, 0, 0, 0, 0}, left_(recordBytes) {
    open = true;
  }
  bool Transfer(const _VscCdb& cdb, int, int& size, char* buffer, bool) override {
    if (static_cast<unsigned char>(cdb.bytes[0]) != 0xC4) return true;
    const std::size_t room = static_cast<std::size_t>(size);
    const std::size_t head = std::min(answer_.size(), room);
    std::copy_n(answer_.begin(), head, buffer);
    answer_.erase(0, head);
    const std::size_t zeros = std::min(left_, room - head);
    std::fill_n(buffer + head, zeros, 0);
    left_ -= zeros;
    sent += head + zeros;
    size = static_cast<int>(head + zeros);
    return true;
  }
  std::size_t sent = 0;

 private:
  std::string answer_;
  std::size_t left_;
};

std::string Error(Camera& camera) {
  try {
    ReadPictures(camera);
  } catch (const Failure& failure) {
    return failure.what();
  }
  return "no error";
}

TEST(PictureListTest, EveryRecordIsAPicture) {
  CatalogueCamera camera(24, 0, 24 * 5000);
  EXPECT_EQ(ReadPictures(camera).size(), 5000U);
}

TEST(PictureListTest, WithoutRecordsOrASessionThereIsNoPicture) {
  CatalogueCamera camera(0, 0, 0);
  EXPECT_THAT(ReadPictures(camera), IsEmpty());
  CatalogueCamera closed(24, 0, 24);
  closed.open = false;
  EXPECT_THAT(ReadPictures(closed), IsEmpty());
  EXPECT_EQ(closed.sent, 0U);
}

TEST(PictureListTest, RecordsThatCannotNameAPictureAreRefusedAtTheFirstChunk) {
  for (const int stride : {0, 1, 23}) {
    CatalogueCamera camera(static_cast<char>(stride), 0, std::size_t{64} << 20);
    EXPECT_THAT(Error(camera), HasSubstr("its records have " + std::to_string(stride) + " bytes, too few"));
    EXPECT_EQ(camera.sent, 65'536U);
  }
}

TEST(PictureListTest, ACatalogueThatGoesOnIsRefusedAfterAMillionPictures) {
  CatalogueCamera whole(24, 0, 24'000'000);
  EXPECT_EQ(Error(whole), "no error");
  CatalogueCamera camera(24, 0, std::size_t{1} << 32);
  EXPECT_THAT(Error(camera), HasSubstr("it goes on after 1000000 pictures or 256 MB"));
  EXPECT_LT(camera.sent, 24'200'000U);
  CatalogueCamera wide(0, 64, std::size_t{1} << 32);
  EXPECT_THAT(Error(wide), HasSubstr("it goes on after"));
  EXPECT_LT(wide.sent, std::size_t{257} << 20);
}

}  // namespace
}  // namespace apps
