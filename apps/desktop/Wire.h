#ifndef KELVA_APPS_DESKTOP_WIRE_H_
#define KELVA_APPS_DESKTOP_WIRE_H_

#include <QByteArray>
#include <QStringList>

namespace desktop {

/// One command for a worker: the words percent-encoded, a TAB between them, a line feed at the end.
QByteArray CommandLine(const QStringList& words);

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_WIRE_H_
