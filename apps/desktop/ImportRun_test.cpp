#include "apps/desktop/ImportRun.h"

#include <QJsonDocument>

#include "apps/desktop/testing/TestApplication.h"

namespace desktop {
namespace {

class ImportRunTest : public WindowTest {};

QJsonObject Json(const char* text) {
  return QJsonDocument::fromJson(text).object();
}

ImportRun Import(const QStringList& before = {}, Kinds meant = kAllKinds) {
  return {false, {"100A/IMG_1", "100A/IMG_2"}, before, meant};
}

void Store(ImportRun& run, const QStringList& names) {
  for (const QString& name : names) run.Hear({{"event", "stored"}, {"path", "I:\\DCIM\\100A\\" + name}});
}

TEST_F(ImportRunTest, AFileBelongsToThePictureOfItsPath) {
  EXPECT_EQ(KeyOfPath("I:\\DCIM\\100A\\IMG_1.JPG"), "100A/IMG_1");
}

TEST_F(ImportRunTest, WholePicturesAreThoseOfWhichNothingFailed) {
  ImportRun run = Import();
  Store(run, {"IMG_1.JPG", "IMG_2.RAW"});
  run.Hear(Json(R"({"event":"failed","path":"I:\\DCIM\\100A\\IMG_2.JPG","error":"It was damaged."})"));
  run.Hear(Json(R"({"command":"import","exit":6,"stored":1,"failed":1,"size_only":0})"));
  EXPECT_EQ(run.Deletable(), QStringList("100A/IMG_1"));
  EXPECT_EQ(run.Trouble(), "It was damaged.");
  EXPECT_EQ(run.Ending(false), "1 picture is on this computer and checked. Delete it from the camera?");
}

TEST_F(ImportRunTest, ManyFailuresAreCounted) {
  ImportRun run = Import();
  for (int file = 0; file < 5; ++file) {
    run.Hear(Json(R"({"event":"failed","path":"I:\\DCIM\\100A\\IMG_2.JPG","error":"No."})"));
  }
  run.Hear(Json(R"({"command":"import","exit":6})"));
  EXPECT_EQ(run.Trouble(), "No. No. No. 2 more files failed.");
}

TEST_F(ImportRunTest, WhatWasNotReadTwiceIsToBeBeforeItIsDeleted) {
  ImportRun run = Import();
  Store(run, {"IMG_1.JPG", "IMG_2.JPG"});
  run.Hear(Json(R"({"exit":0,"stored":2,"size_only":1})"));
  EXPECT_EQ(run.Ending(false),
            "2 pictures are on this computer. Check them with a second read, and delete them from the camera?");
}

TEST_F(ImportRunTest, CopiesOfBeforeAreNotCalledChecked) {
  ImportRun run = Import({"100A/IMG_1"});
  Store(run, {"IMG_1.RAW"});
  run.Hear(Json(R"({"exit":0,"stored":1,"size_only":0})"));
  EXPECT_EQ(run.Ending(false), "1 picture was imported. Check it once more, and delete it from the camera?");
}

TEST_F(ImportRunTest, APictureOfWhichNothingCameIsNotHere) {
  ImportRun run = Import();
  Store(run, {"IMG_2.JPG", "MOV_3.MP4"});
  run.Hear(Json(R"({"exit":0,"stored":2,"size_only":0})"));
  EXPECT_EQ(run.Deletable(), QStringList("100A/IMG_2"));
  ImportRun none = Import();
  none.Hear(Json(R"({"exit":0,"stored":0,"size_only":0})"));
  EXPECT_EQ(none.Ending(false), "You can unplug the camera.");
}

TEST_F(ImportRunTest, TheQuestionNamesTheKindsThatWereMeant) {
  ImportRun run = Import({}, 1);
  Store(run, {"IMG_1.JPG", "IMG_2.JPG"});
  run.Hear(Json(R"({"exit":0,"stored":2,"size_only":0})"));
  EXPECT_EQ(run.Ending(false), "JPG only: 2 pictures are on this computer and checked. Delete them from the camera?");
}

TEST_F(ImportRunTest, ASecondProcessGoesOnWithWhatTheFirstBrought) {
  ImportRun run = Import();
  Store(run, {"IMG_1.JPG"});
  run.Hear(Json(R"({"event":"failed","path":"I:\\DCIM\\100A\\IMG_2.JPG","error":"It is gone."})"));
  run.Hear(Json(R"({"exit":5,"stored":1,"size_only":1})"));
  run.Begin();
  Store(run, {"IMG_2.JPG"});
  run.Hear(Json(R"({"exit":0,"stored":1,"size_only":0})"));
  EXPECT_EQ(run.Trouble(), "");
  EXPECT_EQ(run.Deletable(), QStringList({"100A/IMG_1", "100A/IMG_2"}));
  EXPECT_TRUE(run.Ending(false).startsWith("2 pictures are on this computer. Check them")) << "one was not read twice";
}

TEST_F(ImportRunTest, ACameraThatIsGoneLetsItGoOnLater) {
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

TEST_F(ImportRunTest, AProcessThatDiesWithoutAWordIsTrouble) {
  EXPECT_FALSE(Import().Trouble().isEmpty());
  EXPECT_TRUE(Import().Deletable().isEmpty());
}

TEST_F(ImportRunTest, TheCameraIsNeededWhileFilesAreMissing) {
  ImportRun failed = Import();
  for (const char* name : {"IMG_1", "IMG_2"}) {
    failed.Hear({{"event", "failed"}, {"path", QString("I:\\DCIM\\100A\\") + name + ".JPG"}, {"error", "No."}});
  }
  failed.Hear(Json(R"({"exit":6,"stored":0,"failed":2})"));
  EXPECT_EQ(failed.Ending(false), "");
  ImportRun done(false, {}, {}, kAllKinds);
  done.Hear(Json(R"({"exit":0,"stored":2,"failed":0})"));
  EXPECT_EQ(done.Ending(false), "You can unplug the camera.");
}

TEST_F(ImportRunTest, EndsWithTheCameraFree) {
  ImportRun run(true, {"100A/IMG_1"}, {}, kAllKinds);
  run.Hear(Json(R"({"exit":0,"deleted":1})"));
  EXPECT_TRUE(run.Ending(false).endsWith("You can unplug the camera."));
}

}  // namespace
}  // namespace desktop
