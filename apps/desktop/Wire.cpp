// Writes the commands that a worker reads.
#include "apps/desktop/Wire.h"

namespace desktop {

QByteArray CommandLine(const QStringList& words) {
  QByteArrayList encoded;
  for (const QString& word : words) encoded.append(word.toUtf8().toPercentEncoding());
  return encoded.join('\t') + '\n';
}

}  // namespace desktop
