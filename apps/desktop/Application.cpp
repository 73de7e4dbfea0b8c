// The program from its arguments to its exit status.
#include "apps/desktop/Application.h"

#include <QApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <array>
#include <csignal>
#include <cstdio>

#include "apps/commandline/ProgramBeside.h"
#include "apps/desktop/MainWindow.h"
#include "apps/desktop/Session.h"
#include "apps/desktop/Words.h"
#include "base/SignalPipe.h"

namespace desktop {
namespace {

constexpr int kWrongArguments = 2;
constexpr char kHelp[] =
    "Usage: kelva-desktop [--virtual SOCKET]\n"
    "\n"
    "Shows the pictures of the cameras that are attached, and imports them.\n"
    "\n"
    "  --virtual SOCKET  the cameras of a virtual bus instead of this machine's\n"
    "  --help            print this text\n"
    "  --version         print the version\n";

int Print(std::FILE* stream, const QString& text) {
  std::fputs(text.toLocal8Bit().constData(), stream);
  return stream == stdout ? 0 : kWrongArguments;
}

StartWorker WorkersOn(const QString& bus) {
  const std::string own = QCoreApplication::applicationFilePath().toStdString();
  const QString program = QString::fromStdString(apps::ProgramBeside(own, "kelva-desktop-worker"));
  return [program, bus](QStringList words, Listener listener) {
    if (!bus.isEmpty()) words << "--virtual" << bus;
    return std::make_unique<WorkerProcess>(program, words, std::move(listener));
  };
}

void Translate(const QString& file, const QString& folder) {
  auto* translator = new QTranslator(qApp);
  if (translator->load(QLocale(), file, "_", folder)) QApplication::installTranslator(translator);
}

// The last one that knows a text counts.
void SpeakTheUsersLanguage() {
  QApplication::installTranslator(new EnglishNumbers(qApp));
  Translate("qtbase", QLibraryInfo::path(QLibraryInfo::TranslationsPath));
  Translate("kelva-desktop", QStandardPaths::locate(QStandardPaths::GenericDataLocation, "kelva/translations",
                                                    QStandardPaths::LocateDirectory));
}

int Show(const QString& bus) {
  std::unique_ptr<MainWindow> window;
  const auto instance = OnlyInstance([&window] {
    if (window) window->Raise();
  });
  if (!instance) return 0;
  FollowAppearance();
  window = std::make_unique<MainWindow>(WorkersOn(bus));
  window->Watch();
  window->show();
  const int status = QApplication::exec();
  window.reset();
  WorkerProcess::EndAll();
  return status;
}

}  // namespace

Arguments ParseArguments(const QStringList& words) {
  Arguments arguments;
  for (qsizetype at = 0; at < words.size(); ++at) {
    const QString& word = words[at];
    if (word == "--help") arguments.answer = kHelp;
    if (word == "--version") arguments.answer = "kelva-desktop " KELVA_VERSION "\n";
    if (word == "--virtual" && at + 1 < words.size()) {
      arguments.bus = words[++at];
    } else if (word.startsWith("--virtual=")) {
      arguments.bus = word.section('=', 1);
    } else if (word == "-style" || word == "-platform") {
      ++at;  // Qt's own
    } else if (arguments.answer.isEmpty()) {
      arguments.mistake = "kelva-desktop: \"" + word + "\" is not understood; --help says how it is used.\n";
    }
  }
  return arguments;
}

int Run(int argc, char** argv) {
  const Arguments arguments = ParseArguments(QStringList(argv + 1, argv + argc));  // before there is a screen
  if (!arguments.answer.isEmpty()) return Print(stdout, arguments.answer);
  if (!arguments.mistake.isEmpty()) return Print(stderr, arguments.mistake);
  // What ends programs closes the window as its button does. Threads that Qt starts leave that to this one.
  constexpr std::array kEnding{SIGTERM, SIGINT, SIGHUP};
  const sigset_t ending = base::SetOf(kEnding);
  ::pthread_sigmask(SIG_BLOCK, &ending, nullptr);
  const base::SignalPipe signals(kEnding);
  QApplication application(argc, argv);
  QSocketNotifier came(signals.Descriptor(), QSocketNotifier::Read);
  QObject::connect(&came, &QSocketNotifier::activated, [&signals] {
    while (signals.Next() != 0) QApplication::quit();
  });
  QApplication::setOrganizationName("Kelva");
  QApplication::setApplicationName("Kelva");  // also what a screen reader calls it
  QApplication::setApplicationDisplayName("Kelva");
  QApplication::setDesktopFileName("com.kelva.Desktop");
  QApplication::setWindowIcon(QIcon::fromTheme("kelva"));
  SpeakTheUsersLanguage();
  const base::SignalPipe::Listening listening(signals);
  return Show(arguments.bus);
}

}  // namespace desktop
