#include "apps/mount/ExifTimes.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

TEST(ExifTimesTest, AFileIsKnownByItsPathInAnyCaseAndItsSize) {
  ExifTimes times;
  EXPECT_EQ(times.Find("I:\\DCIM\\A.JPG", 7), std::nullopt);
  times.Keep("I:\\DCIM\\B.JPG", 7, 0);
  times.Keep("I:\\DCIM\\A.JPG", 7, 1'000);
  EXPECT_EQ(times.Find("i:\\dcim\\a.jpg", 7), 1'000);
  EXPECT_EQ(times.Find("I:\\DCIM\\B.JPG", 7), 0);
  EXPECT_EQ(times.Find("I:\\DCIM\\A.JPG", 8), std::nullopt);
  times.Keep("I:\\DCIM\\A.JPG", 7, 2'000);
  EXPECT_EQ(times.Find("I:\\DCIM\\A.JPG", 7), 2'000);
}

TEST(ExifTimesTest, AFileThatIsWrittenAnewIsForgotten) {
  ExifTimes times;
  times.Keep("I:\\A.JPG", 7, 1'000);
  times.Forget("I:\\A.JPG", 8);
  EXPECT_EQ(times.Find("I:\\A.JPG", 7), 1'000);
  times.Forget("I:\\A.JPG", 7);
  EXPECT_EQ(times.Find("I:\\A.JPG", 7), std::nullopt);
}

TEST(ExifTimesTest, NoMoreAreKeptThanThereIsRoomFor) {
  ExifTimes times(2);
  for (const char* path : {"A", "B", "C"}) times.Keep(path, 1, 1);
  EXPECT_EQ(times.Find("A", 1), std::nullopt);
  EXPECT_EQ(times.Find("C", 1), 1);
}

}  // namespace
}  // namespace apps
