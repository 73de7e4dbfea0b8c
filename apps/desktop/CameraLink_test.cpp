#include "apps/desktop/CameraLink.h"

#include <QFile>

#include "apps/desktop/testing/ScriptedWorker.h"
#include "apps/desktop/testing/TestApplication.h"

namespace desktop {
namespace {

constexpr char kStored[] = R"({"event":"stored","path":"I:\\DCIM\\100A\\IMG_3.JPG"})";
constexpr char kDone[] = R"({"command":"import","exit":0,"stored":2,"failed":0,"size_only":0})";

class CameraLinkTest : public WindowTest {
 protected:
  CameraLinkTest() {
    workers_.scripts["camera"] = ThreePictures();
    link_ = std::make_unique<CameraLink>(workers_.Starter(), "K1");
  }

  bool AwaitPhase(Phase phase) {
    return Await([&] { return link_->State().phase == phase; });
  }

  bool Ready() {
    link_->Attach();
    return Await([&] { return !link_->State().offer.isEmpty() && link_->State().others == 2; });
  }

  ScriptedWorkers workers_;
  std::unique_ptr<CameraLink> link_;
};

TEST_F(CameraLinkTest, LearnsWhatTheCameraHas) {
  ASSERT_TRUE(Ready());
  EXPECT_EQ(link_->State().name, "Mine");
  EXPECT_EQ(link_->State().battery, "75");
  EXPECT_EQ(link_->Model().Count(), 3);
  EXPECT_EQ(link_->Model().At(0).kinds, Kinds{3});
  EXPECT_EQ(link_->Model().At(0).bytes, 3000);
  EXPECT_TRUE(link_->Model().IsNew(0));
  EXPECT_FALSE(link_->Model().IsNew(1));
  EXPECT_EQ(link_->State().offer["new_bytes"].toInt(), 3000);
}

TEST_F(CameraLinkTest, AnImportOfAllNamesNoPicturesAndAsksAfterwards) {
  workers_.scripts["import"] = Say(kStored) + Say(kDone);
  ASSERT_TRUE(Ready());
  link_->Import({});
  EXPECT_FALSE(workers_.calls.last().contains("--pictures"));
  ASSERT_TRUE(AwaitPhase(Phase::kAsking));
  EXPECT_EQ(link_->State().result, "1 picture is on this computer and checked. Delete it from the camera?");
}

TEST_F(CameraLinkTest, AnImportOfAllBeginsWithWhatIsExpected) {
  workers_.scripts["import"] = "cat >/dev/null";
  ASSERT_TRUE(Ready());
  link_->Import({});
  EXPECT_EQ(link_->State().progress["files_total"].toInt(), 2);
  EXPECT_EQ(link_->State().progress["total"].toInt(), 3000);
  link_->Import({1});
  EXPECT_TRUE(link_->State().progress.isEmpty()) << "how large the selected ones are is not known";
}

TEST_F(CameraLinkTest, FollowsAnImport) {
  workers_.scripts["import"] = Say(R"({"event":"progress","done":500,"total":2000,"file":"IMG_3.JPG"})") +
                               Say(kStored) + Say(R"({"event":"stored","path":"I:\\DCIM\\100A\\IMG_3.RAW"})") + "cat";
  ASSERT_TRUE(Ready());
  ASSERT_TRUE(link_->Model().IsNew(0));
  link_->Import({});
  ASSERT_TRUE(Await([&] { return !link_->Model().IsNew(0); }));
  EXPECT_EQ(link_->State().progress["done"].toInt(), 500);
  EXPECT_EQ(link_->State().progress["total"].toInt(), 2000);
}

TEST_F(CameraLinkTest, SelectedPicturesAreNamedInAFile) {
  workers_.scripts["import"] = "while [ \"$1\" != --pictures ]; do shift; done; cp \"$2\" \"$2.seen\"\n" + Say(kDone);
  ASSERT_TRUE(Ready());
  link_->Import({1, 2});
  const QStringList call = workers_.calls.last();
  ASSERT_TRUE(AwaitPhase(Phase::kAsking));
  QFile seen(call[call.indexOf("--pictures") + 1] + ".seen");
  ASSERT_TRUE(seen.open(QIODevice::ReadOnly));
  EXPECT_EQ(seen.readAll(), "100A/IMG_2\n100A/IMG_1\n");
  seen.remove();
  EXPECT_EQ(link_->State().result, "2 pictures were imported. Check them once more, and delete them from the camera?");
}

TEST_F(CameraLinkTest, OnlyWhatWasImportedIsDeleted) {
  workers_.scripts["import"] = Say(kStored) + Say(kDone);
  ASSERT_TRUE(Ready());
  link_->Import({});
  ASSERT_TRUE(AwaitPhase(Phase::kAsking));
  workers_.scripts["import"] = Say(R"({"command":"import","exit":0,"deleted":2})");
  link_->Delete();
  const QStringList call = workers_.calls.last();
  EXPECT_TRUE(call.contains("--delete-after-verify"));
  EXPECT_TRUE(call.contains("--pictures"));
  EXPECT_FALSE(call.contains("--everything"));
  ASSERT_TRUE(AwaitPhase(Phase::kReady));
  EXPECT_EQ(link_->State().result, "2 files were deleted from the camera. You can unplug the camera.");
}

TEST_F(CameraLinkTest, APulledCableLetsTheImportGoOnWhenTheCameraIsBack) {
  workers_.scripts["import"] = Say(R"({"command":"import","exit":5,"error":"gone"})");
  ASSERT_TRUE(Ready());
  link_->Import({});
  link_->Lose();
  ASSERT_TRUE(AwaitPhase(Phase::kCutOff));
  EXPECT_FALSE(link_->IsDone());
  EXPECT_FALSE(link_->State().notice.sentence.isEmpty());
  workers_.scripts["import"] = Say(kStored) + Say(kDone);
  link_->Attach();
  EXPECT_EQ(link_->State().phase, Phase::kImporting);
  EXPECT_TRUE(link_->State().notice.sentence.isEmpty());
  EXPECT_TRUE(AwaitPhase(Phase::kAsking));
}

TEST_F(CameraLinkTest, ACameraThatIsBackBeforeItsLossIsKnownIsReadOn) {
  workers_.scripts["import"] = Say(R"({"command":"import","exit":5,"error":"gone"})");
  ASSERT_TRUE(Ready());
  link_->Import({});
  ASSERT_TRUE(AwaitPhase(Phase::kCutOff));
  workers_.scripts["import"] = Say(kStored) + Say(kDone);
  EXPECT_TRUE(AwaitPhase(Phase::kAsking));
}

TEST_F(CameraLinkTest, CancelEndsAnImport) {
  workers_.scripts["import"] =
      "cat >/dev/null\n" + Say(R"({"command":"import","exit":130,"stored":1,"error":"stopped"})");
  ASSERT_TRUE(Ready());
  link_->Import({});
  link_->Cancel();
  ASSERT_TRUE(AwaitPhase(Phase::kReady));
  EXPECT_EQ(link_->State().result, "Stopped. 1 file is on this computer; press Import to go on.");
  EXPECT_TRUE(link_->State().notice.sentence.isEmpty());
}

TEST_F(CameraLinkTest, AWorkerThatDiesIsOneSentenceAndCanBeStartedAgain) {
  workers_.scripts["camera"] = "exit 1";
  link_->Attach();
  ASSERT_TRUE(Await([&] { return link_->State().notice.canRetry; }));
  workers_.scripts["camera"] = ThreePictures();
  link_->Retry();
  EXPECT_TRUE(Await([&] { return link_->State().listed; }));
  EXPECT_TRUE(link_->State().notice.sentence.isEmpty());
}

TEST_F(CameraLinkTest, AnImportWithoutAListerKeepsItsSentenceAndStartsItAnew) {
  workers_.scripts["camera"] = ThreePictures().replace("cat >/dev/null", "exit 1");
  workers_.scripts["import"] = "read -r end\n" + Say(kStored) + Say(kDone);
  ASSERT_TRUE(Ready());
  ASSERT_TRUE(Await([&] { return link_->State().notice.canRetry; }));
  workers_.scripts["camera"] = ThreePictures();
  link_->Import({});
  EXPECT_TRUE(link_->State().notice.canRetry);
  EXPECT_FALSE(link_->State().notice.sentence.isEmpty());
  link_->Cancel();  // the script waits for the end of its input
  ASSERT_TRUE(AwaitPhase(Phase::kReady));
  EXPECT_EQ(workers_.calls.last()[0], "camera");
  EXPECT_TRUE(link_->State().notice.sentence.isEmpty());
}

TEST_F(CameraLinkTest, AKilledWorkersLastWordsExplainNothing) {
  workers_.scripts["camera"] = Say(R"({"event":"error","exit":130,"message":"Stopped."})") + "kill -9 $$";
  link_->Attach();
  ASSERT_TRUE(Await([&] { return link_->State().notice.canRetry; }));
  EXPECT_NE(link_->State().notice.sentence, "Stopped.");
}

TEST_F(CameraLinkTest, AWorkerThatFailsSaysWhy) {
  workers_.scripts["camera"] = Say(R"({"event":"error","exit":1,"message":"The camera refuses."})") + "exit 1";
  link_->Attach();
  EXPECT_TRUE(Await([&] { return link_->State().notice.sentence == "The camera refuses."; }));
}

TEST_F(CameraLinkTest, AWorkerWhoseCameraIsGoneIsNoTrouble) {
  bool changed = false;
  workers_.scripts["camera"] = "exit 5";
  link_->Attach();
  link_->onChange = [&] { changed = true; };
  ASSERT_TRUE(Await([&] { return changed; }));
  EXPECT_TRUE(link_->State().notice.sentence.isEmpty());
}

TEST_F(CameraLinkTest, ABusyCameraIsASentenceUntilItIsFree) {
  workers_.scripts["camera"] =
      Say(R"({"event":"busy","holders":"kelva sync"})") + "read -r x\n" + Say(R"({"event":"free"})") + "cat";
  link_->Attach();
  ASSERT_TRUE(Await([&] { return link_->State().notice.sentence.startsWith("kelva sync "); }));
  link_->Ask("preview", {});
  EXPECT_TRUE(Await([&] { return link_->State().notice.sentence.isEmpty(); }));
}

TEST_F(CameraLinkTest, AFolderThatCannotBeUsedIsItsSentence) {
  workers_.scripts["camera"] =
      Say(R"({"event":"pictures","from":0,"items":[]})") +
      "read -r x folder y; printf '{\"event\":\"target\",\"folder\":\"%s\",\"error\":\"It is a file.\"}\\n' "
      "\"$folder\"; cat";
  link_->Attach();
  EXPECT_TRUE(Await([&] { return link_->State().offer["error"] == "It is a file."; }));
}

TEST_F(CameraLinkTest, EachNewListIsToldTheTarget) {
  const QString list = Say(R"({"event":"pictures","from":0,"items":[["100A","IMG_1",1,""]]})") +
                       "read -r x folder y; [ \"$x\" = target ] || exit 1\n";
  workers_.scripts["camera"] = list + list + "printf '{\"event\":\"target\",\"folder\":\"%s\"}\\n' \"$folder\"; cat";
  link_->Attach();
  EXPECT_TRUE(Await([&] { return !link_->State().offer.isEmpty(); }));
  EXPECT_EQ(link_->Model().Count(), 1);
}

TEST_F(CameraLinkTest, AThumbnailThatIsNoPictureIsSaidSo) {
  workers_.scripts["camera"] = Say(R"({"event":"pictures","from":0,"items":[["100A","IMG_1",1,""]]})") +
                               Say(R"({"event":"thumb","index":0,"time":"2026-03-14 15:09:26","jpeg":"AAAA"})") + "cat";
  link_->Attach();
  ASSERT_TRUE(Await([&] { return link_->Model().Count() == 1 && link_->Model().At(0).taken; }));
  EXPECT_FALSE(link_->Model().At(0).whyNone.isEmpty());
  EXPECT_EQ(link_->Model().At(0).taken->date(), QDate(2026, 3, 14));
}

}  // namespace
}  // namespace desktop
