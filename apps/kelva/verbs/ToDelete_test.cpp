#include "apps/kelva/verbs/ToDelete.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/camera/testing/FakeCamera.h"
#include "apps/camera/testing/MadePicture.h"
#include "apps/import/Manifest.h"

namespace apps {
namespace {

using testing::ElementsAre;

TEST(ToDeleteTest, APictureIsOneLineWithTheTypesThatGo) {
  std::vector<DcfObj> catalogue = {MadePicture(1), MadePicture(2), MadePicture(3)};
  catalogue[0].hasRaw = 1;
  catalogue[0].hasTxt = 1;
  Manifest manifest;
  SyncPlan plan = MakePlan(catalogue, "K1", {1, 2}, Pattern(Pattern::kDefault), manifest, nullptr);
  plan.items[2].SetState(SyncItem::State::kDeleted);
  plan.items[3].SetState(SyncItem::State::kFetched);
  FakeCamera camera;
  ListedSizes sizes(camera);
  const std::vector<const SyncItem*> items = ToDelete(plan, sizes);
  EXPECT_EQ(items.size(), 3U) << "what was deleted before, and is not there, is not deleted again";
  EXPECT_THAT(InLines(items).First(), ElementsAre("100ABCDE/IMG_0001  JPG RAW", "100ABCDE/IMG_0003  JPG"));
}

TEST(ToDeleteTest, AnotherFileIsShownWithItsPath) {
  const SyncSource source{{}, "K1", Pattern(Pattern::kDefault), CatalogueTaken};
  const OtherFile video{"I:\\DCIM\\100ABCDE\\my video.MP4", 3};
  const SyncItem item(source, video);
  EXPECT_THAT(InLines({&item, &item}).First(),
              ElementsAre("'I:/DCIM/100ABCDE/my video.MP4'", "'I:/DCIM/100ABCDE/my video.MP4'"));
}

}  // namespace
}  // namespace apps
