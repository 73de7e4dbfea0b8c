// Says which cameras come and go, in Qt's event loop.
#include <kelva/EventLoop.h>
#include <kelva/Listener.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimer>
#include <iostream>

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  // Qt lets no exception pass either: these functions throw none.
  const kelva::Listener listener({
      .attached = [](auto, auto& serial) { std::cout << serial << " attached" << std::endl; },
      .lost = [](auto, auto& serial) { std::cout << serial << " lost" << std::endl; },
      .badCamera = {},
  });
  const QSocketNotifier notifier(kelva::EventDescriptor(), QSocketNotifier::Read);
  QObject::connect(&notifier, &QSocketNotifier::activated, [] { kelva::DispatchEvents(); });
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [] { kelva::DispatchEvents(); });
  if (kelva::EventDescriptor() < 0) timer.start(100);  // macOS
  return QCoreApplication::exec();
}
