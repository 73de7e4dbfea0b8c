#include "apps/desktop/worker/Target.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "apps/import/testing/SyncTest.h"

namespace apps {
namespace {

using testing::HasSubstr;
using testing::Not;

class TargetTest : public SyncFolderTest {
 protected:
  TargetTest() {
    pictures_[0].hasRaw = 1;
    manifest_.Record({{.key = KeyOf(pictures_[0], 1, "K1"), .path = "one", .sha1 = "1", .size = 3}});
  }
  std::string Members(const Target& target, const OnCamera& camera) const {
    return TargetMembers(target, camera).Text();
  }

  std::vector<DcfObj> pictures_ = {Picture(2), Picture(1)};
  const std::vector<FileSizes> sizes_ = {{{10, 20, {}, {}}}, {{30, {}, {}, {}}}};
};

TEST_F(TargetTest, MarksTheTypesThatAreNew) {
  EXPECT_THAT(Members({path_, "", ""}, {"K1", pictures_, sizes_}),
              HasSubstr(R"("new":"21","new_pictures":2,"new_files":2,"new_bytes":50,"unlisted":0)"));
  EXPECT_THAT(Members({path_, "", "jpg"}, {"K1", pictures_, sizes_}),
              HasSubstr(R"("new":"01","new_pictures":1,"new_files":1,"new_bytes":30)"));
  EXPECT_THAT(Members({path_, "", ""}, {"K2", pictures_, sizes_}), HasSubstr(R"("new":"31")"));
}

TEST_F(TargetTest, NamesNoBytesBeforeTheSizesAreKnown) {
  EXPECT_THAT(Members({path_, "", ""}, {"K1", pictures_, {}}), Not(HasSubstr("bytes")));
}

TEST_F(TargetTest, CountsOtherFilesThatAreNew) {
  const OtherFiles others{{{"I:\\DCIM\\100ABCDE\\MVI_0001.MP4", 500}, {"I:\\MISC\\AUTPRINT.MRK", 7}}};
  manifest_.Record({{.key = others.files[1].Key("K1"), .path = "b", .sha1 = "2", .size = 7}});
  EXPECT_THAT(Members({path_, "", ""}, {"K1", pictures_, sizes_, &others}),
              HasSubstr(R"("new_others":1,"new_others_bytes":500)"));
}

TEST_F(TargetTest, InAFolderThatIsNotThereAllIsNewAndNoneIsMade) {
  EXPECT_THAT(Members({path_ + "/later", "", ""}, {"K1", pictures_, sizes_}),
              testing::AllOf(HasSubstr(R"("new":"31")"), HasSubstr(R"("free":)")));
  struct stat status {};
  EXPECT_NE(::lstat((path_ + "/later").c_str(), &status), 0);
}

TEST_F(TargetTest, SaysWhyAFolderOrANamingCannotBeUsed) {
  EXPECT_THAT(Members({path_, "{frob}", ""}, {"K1", pictures_, sizes_}), HasSubstr(R"("error":")"));
  EXPECT_THAT(Members({path_, "", "gif"}, {"K1", pictures_, sizes_}), HasSubstr(R"("error":"\"gif\" is not a type)"));
  EXPECT_THAT(Members({"/dev/null/x", "", ""}, {"K1", pictures_, sizes_}), HasSubstr(R"("error":")"));
}

}  // namespace
}  // namespace apps
