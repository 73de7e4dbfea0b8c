#ifndef KELVA_APPS_DESKTOP_TESTING_TEST_APPLICATION_H_
#define KELVA_APPS_DESKTOP_TESTING_TEST_APPLICATION_H_

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QStandardPaths>
#include <functional>

#include "apps/desktop/Words.h"

namespace desktop {

/// A test with the one application that Qt wants, settings of its own, and no screen.
class WindowTest : public testing::Test {
 protected:
  WindowTest() { Application(); }

  static void Application() {
    if (QCoreApplication::instance() != nullptr) return;
    static int count = 1;
    static char name[] = "test";
    static char* words[] = {name, nullptr};
    QStandardPaths::setTestModeEnabled(true);
    // Never destroyed: the order of destruction at the end of a test program is nobody's.
    static const auto* application = new QApplication(count, words);
    static_cast<void>(application);
    QApplication::setOrganizationName("Kelva");
    QApplication::setApplicationName("DesktopTest");
    static EnglishNumbers english;
    QApplication::installTranslator(&english);
  }

  /// Runs the event loop until something holds; false when it does not within ten seconds.
  static bool Await(const std::function<bool()>& holds) {
    QElapsedTimer spent;
    spent.start();
    while (!holds()) {
      if (spent.elapsed() > 10000) return false;
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 50);
    }
    return true;
  }
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_TESTING_TEST_APPLICATION_H_
