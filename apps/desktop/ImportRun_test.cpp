#include "apps/desktop/ImportRun.h"

#include <gtest/gtest.h>

#include <QJsonDocument>

namespace desktop {
namespace {

QJsonObject Json(const char* text) {
  return QJsonDocument::fromJson(text).object();
}

ImportRun Import() {
  return {false, {"100A/IMG_1", "100A/IMG_2"}, {2, 2, 2000, 0, 0, {}}};
}

TEST(ImportRunTest, StartsWithWhatIsExpected) {
  const ImportRun run = Import();
  EXPECT_EQ(run.Now().filesTotal, 2);
  EXPECT_EQ(run.Now().total, 2000);
}

TEST(ImportRunTest, FollowsTheProgress) {
  ImportRun run = Import();
  run.Hear(Json(R"({"event":"progress","phase":"reading","done":500,"total":2000,"bytes_per_second":100,"files":1,
                    "files_total":2,"file":"IMG_1.JPG"})"));
  EXPECT_EQ(run.Now().bytes, 500);
  EXPECT_EQ(run.Now().rate, 100);
  EXPECT_EQ(run.Now().files, 1);
}

TEST(ImportRunTest, NamesThePictureThatWasStored) {
  ImportRun run = Import();
  run.Hear(Json(R"({"event":"stored","path":"I:\\DCIM\\100A\\IMG_1.JPG"})"));
  EXPECT_EQ(run.StoredKey(), "100A/IMG_1");
  run.Hear(Json(R"({"event":"progress"})"));
  EXPECT_EQ(run.StoredKey(), "");
}

TEST(ImportRunTest, WholePicturesAreThoseOfWhichNothingFailed) {
  ImportRun run = Import();
  run.Hear(Json(R"({"event":"failed","path":"I:\\DCIM\\100A\\IMG_2.JPG","error":"It was damaged."})"));
  run.Hear(Json(R"({"command":"import","exit":6,"stored":1,"failed":1,"size_only":0})"));
  EXPECT_TRUE(run.Succeeded());
  EXPECT_EQ(run.Whole(), QStringList("100A/IMG_1"));
  EXPECT_EQ(run.Trouble(), "It was damaged.");
  EXPECT_TRUE(run.WasChecked());
}

TEST(ImportRunTest, ManyFailuresAreCounted) {
  ImportRun run = Import();
  for (int file = 0; file < 5; ++file)
    run.Hear(Json(R"({"event":"failed","path":"I:\\DCIM\\100A\\IMG_2.JPG","error":"No."})"));
  run.Hear(Json(R"({"command":"import","exit":6})"));
  EXPECT_TRUE(run.Trouble().startsWith("No. No. No. "));
}

TEST(ImportRunTest, ACameraThatIsGoneLetsItGoOnLater) {
  for (const char* end : {R"({"exit":5,"error":"gone"})", R"({"exit":3,"error":"none"})"}) {
    ImportRun run = Import();
    run.Hear(Json(end));
    EXPECT_TRUE(run.WasCutOff());
  }
  ImportRun full = Import();
  full.Hear(Json(R"({"exit":1,"error":"The disk is full."})"));
  EXPECT_FALSE(full.WasCutOff());
  EXPECT_EQ(full.Trouble(), "The disk is full.");
}

TEST(ImportRunTest, AProcessThatDiesWithoutAWordIsTrouble) {
  EXPECT_FALSE(Import().Trouble().isEmpty());
  EXPECT_FALSE(Import().Succeeded());
}

TEST(ImportRunTest, TheCameraIsNeededWhileFilesAreMissing) {
  ImportRun failed = Import();
  failed.Hear(Json(R"({"exit":6,"stored":0,"failed":2})"));
  EXPECT_TRUE(failed.Succeeded());
  EXPECT_EQ(failed.Ending(false), "");
  ImportRun done = Import();
  done.Hear(Json(R"({"exit":0,"stored":2,"failed":0})"));
  EXPECT_EQ(done.Ending(false), "You can unplug the camera.");
}

TEST(ImportRunTest, EndsWithTheCameraFree) {
  ImportRun run(true, {"100A/IMG_1"}, {});
  run.Hear(Json(R"({"exit":0,"deleted":1})"));
  EXPECT_TRUE(run.Ending(false).endsWith("You can unplug the camera."));
}

}  // namespace
}  // namespace desktop
