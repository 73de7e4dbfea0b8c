// Every text that the window shows goes through a translation.
#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTest>

#include "apps/desktop/Grid.h"
#include "apps/desktop/MainWindow.h"
#include "apps/desktop/testing/ScriptedWorker.h"
#include "apps/desktop/testing/TestApplication.h"

namespace desktop {
namespace {

// A language whose words stand between guillemets.
class Guillemets : public EnglishNumbers {
 public:
  QString translate(const char* context, const char* source, const char* comment, int number) const override {
    return QChar(0xab) + EnglishNumbers::translate(context, source, comment, number) + QChar(0xbb);
  }
};

// What a worker and the system say comes as it is.
constexpr auto kData = "Mine|K1|IMG_\\d|100A|JPG|RAW|~?(/\\w+)+|bytes|[kMG]?B|It failed|Do this|\\bcommand\\b";

bool IsTranslated(QString text) {
  static const QRegularExpression translated(QStringLiteral("\\x{ab}[^\\x{ab}\\x{bb}]*\\x{bb}"));
  static const QRegularExpression data(kData);
  static const QRegularExpression letter("\\p{L}");
  return !text.remove(translated).remove(data).contains(letter);
}

QStringList TextsOf(const QWidget& window) {
  QStringList texts{window.windowTitle()};
  for (const QWidget* widget : window.findChildren<QWidget*>()) {
    texts << widget->accessibleName() << widget->accessibleDescription() << widget->toolTip();
    if (const auto* label = qobject_cast<const QLabel*>(widget)) {
      texts << label->text();
    } else if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) {
      texts << button->text();
    }
    if (const auto* tabs = qobject_cast<const QTabWidget*>(widget)) {
      for (int tab = 0; tab < tabs->count(); ++tab) texts << tabs->tabText(tab);
    }
    if (const auto* box = qobject_cast<const QComboBox*>(widget)) {
      for (int item = 0; item < box->count(); ++item) texts << box->itemText(item);
    }
    if (const auto* grid = dynamic_cast<const Grid*>(widget)) {
      const QAbstractItemModel& list = *grid->model();
      for (int row = 0; row < list.rowCount(); ++row) {
        texts << list.index(row, 0).data(Qt::AccessibleTextRole).toString();
      }
    }
  }
  return texts;
}

class TranslationTest : public WindowTest {
 protected:
  TranslationTest() { QApplication::installTranslator(&language_); }
  ~TranslationTest() override {
    QApplication::removeTranslator(&language_);
    EXPECT_TRUE(english_.isEmpty()) << english_.values().join('\n').toStdString();
  }

  void Make() {
    window_ = std::make_unique<MainWindow>(workers_.Starter());
    window_->Watch();
    window_->show();
  }
  // Waits for a text, and looks at all others on the way.
  bool Reads(const QString& wanted) {
    return Await([&] {
      const QStringList texts = TextsOf(*window_);
      for (const QString& text : texts) {
        if (!IsTranslated(text)) english_.insert(text);
      }
      return std::any_of(texts.begin(), texts.end(), [&](const QString& text) { return text.contains(wanted); });
    });
  }
  void Press(const QString& wanted) {
    for (auto* button : window_->findChildren<QAbstractButton*>()) {
      if (button->isVisible() && button->text().contains(wanted)) return button->click();
    }
    FAIL() << wanted.toStdString();
  }

  Guillemets language_;
  QSet<QString> english_;
  ScriptedWorkers workers_;
  std::unique_ptr<MainWindow> window_;
};

const QString kAttached = Say(R"({"event":"attached","serial":"K1"})") + Say(R"({"event":"ready"})");

TEST_F(TranslationTest, FromThePlugToTheQuestion) {
  workers_.scripts["watch"] = "sleep 0.1\n" + kAttached + "cat";
  workers_.scripts["camera"] = ThreePictures();
  workers_.scripts["import"] =
      Say(R"({"event":"progress","phase":"reading","files":1,"files_total":2,"done":10,"total":3000,"bytes_per_second":20})") +
      "sleep 0.1\n" + Say(R"({"event":"stored","path":"I:\\DCIM\\100A\\IMG_3.JPG"})") +
      Say(R"({"command":"import","exit":0,"stored":2,"failed":0})");
  Make();
  EXPECT_TRUE(Reads("Plug a camera in"));
  EXPECT_TRUE(Reads("2 other files are not shown"));
  EXPECT_TRUE(Reads("Import 1 new picture\u00bb")) << "plural forms are translated";
  Press("Import 1");
  EXPECT_TRUE(Reads("1 of 2 files"));
  EXPECT_TRUE(Reads("Delete it from the camera?"));
  Press("Keep");
  EXPECT_TRUE(Reads("You can unplug"));
}

TEST_F(TranslationTest, WhatIsInTheWay) {
  workers_.scripts["watch"] = kAttached + "sleep 0.2";
  workers_.scripts["camera"] = Say(R"({"event":"busy","holders":""})") + "sleep 0.1; exit 1";
  Make();
  EXPECT_TRUE(Reads("uses the camera"));
  EXPECT_TRUE(Reads("The program that talks to this camera has stopped."));
  EXPECT_TRUE(Reads("The program that watches for cameras has stopped."));
}

TEST_F(TranslationTest, APulledCableAndACancelledImport) {
  workers_.scripts["watch"] = kAttached + "cat";
  workers_.scripts["camera"] = ThreePictures();
  workers_.scripts["import"] = Say(R"({"command":"import","exit":5,"stored":0,"failed":0})");
  Make();
  EXPECT_TRUE(Reads("Import 1 new picture"));
  Press("Import 1");
  EXPECT_TRUE(Reads("The cable was pulled"));
  EXPECT_TRUE(Reads("Waiting for the camera"));
}

}  // namespace
}  // namespace desktop
