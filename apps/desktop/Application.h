#ifndef KELVA_APPS_DESKTOP_APPLICATION_H_
#define KELVA_APPS_DESKTOP_APPLICATION_H_

#include <QStringList>

namespace desktop {

/// What the command line says.
struct Arguments {
  QString bus;      ///< the socket of a bus of virtual cameras; empty for this machine's cameras
  QString answer;   ///< to be printed in place of a window
  QString mistake;  ///< what is wrong with the words
};

/// `words` are those behind the program's name that Qt has left.
Arguments ParseArguments(const QStringList& words);

/// The program from its arguments to its exit status: 0, or 2 for wrong arguments.
int Run(int argc, char** argv);

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_APPLICATION_H_
