#include "apps/import/TakenTime.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

namespace apps {
namespace {

/// Another zone for a test.
class Zone {
 public:
  explicit Zone(const char* name) {
    if (const char* set = std::getenv("TZ")) before_ = set;
    ::setenv("TZ", name, 1);
    ::tzset();
  }
  ~Zone() {
    before_ ? ::setenv("TZ", before_->c_str(), 1) : ::unsetenv("TZ");
    ::tzset();
  }
  Zone(const Zone&) = delete;
  Zone& operator=(const Zone&) = delete;

 private:
  std::optional<std::string> before_;
};

TEST(TakenTimeTest, ATimeIsReadAndWritten) {
  for (const char* text :
       {"2026-03-14 15:09:26", "1970-01-01 00:00:00", "2024-02-29 23:59:59", "2199-12-31 09:08:07"}) {
    const auto time = ParseTaken(text);
    ASSERT_TRUE(time) << text;
    EXPECT_EQ(TakenText(*time), text);
  }
}

TEST(TakenTimeTest, ATimeThatNoCalendarHasIsNone) {
  for (const char* text : {"0000-00-00 00:00:00", "2026-02-29 00:00:00", "2026-13-01 00:00:00", "2026-00-10 00:00:00",
                           "2026-01-00 00:00:00", "2026-01-01 24:00:00", "2026-01-01 00:60:00", "2026-01-01 00:00:60",
                           "1969-12-31 23:59:59", "2200-01-01 00:00:00", "9999-99-99 99:99:99", "2026-03-14", "",
                           "2026:03:14 15:09:26", "    -  -     :  :  "}) {
    EXPECT_FALSE(ParseTaken(text)) << text;
  }
}

TEST(TakenTimeTest, TheCatalogueGivesATimeOnlyWhereItIsOne) {
  DcfObj picture{};
  EXPECT_FALSE(CatalogueTaken(picture));
  std::memcpy(picture.block8, "0000-00-00 00:00:00", 19);
  EXPECT_FALSE(CatalogueTaken(picture));
  std::memcpy(picture.block8, "2026-03-14 15:09:26", 19);
  EXPECT_EQ(CatalogueTaken(picture), ParseTaken("2026-03-14 15:09:26"));
}

TEST(TakenTimeTest, TheMomentIsThatOfThisComputersZone) {
  const TakenTime time = *ParseTaken("2026-07-14 15:09:26");
  {
    const Zone zone("UTC0");
    EXPECT_EQ(MomentHere(time), 1'784'041'766);
  }
  {
    // Summer time counts: two hours before UTC in July, one in January.
    const Zone zone("CET-1CEST,M3.5.0,M10.5.0");
    EXPECT_EQ(MomentHere(time), 1'784'041'766 - 7200);
    EXPECT_EQ(MomentHere(*ParseTaken("2026-01-14 15:09:26")), 1'768'403'366 - 3600);
  }
}

}  // namespace
}  // namespace apps
