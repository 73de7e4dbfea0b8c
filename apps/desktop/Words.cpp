// Sizes, times and numbers as people read them.
#include "apps/desktop/Words.h"

#include <QCoreApplication>
#include <QLocale>
#include <QRegularExpression>

namespace desktop {

QString SizeText(qint64 bytes) {
  // One digit behind the point, and none where three stand before it.
  qint64 unit = 1;
  while (bytes / unit >= 1000) unit *= 1000;
  const int precision = bytes / unit >= 100 || unit < 1000000 ? 0 : 1;
  return QLocale().formattedDataSize(bytes, precision, QLocale::DataSizeSIFormat);
}

QString TimeLeftText(qint64 seconds) {
  if (seconds < 0) return {};
  const auto text = [](const char* source, qint64 number) {
    return QCoreApplication::translate("Words", source, nullptr, static_cast<int>(number));
  };
  if (seconds < 60) return text(QT_TRANSLATE_NOOP("Words", "%n (second|seconds) left"), seconds);
  if (seconds < 3600) return text(QT_TRANSLATE_NOOP("Words", "%n (minute|minutes) left"), (seconds + 30) / 60);
  return text(QT_TRANSLATE_NOOP("Words", "%n (hour|hours) left"), (seconds + 1800) / 3600);
}

QString EnglishNumbers::translate(const char*, const char* source, const char*, int number) const {
  static const QRegularExpression forms(QStringLiteral(R"(\(([^()|]*)\|([^()|]*)\))"));
  QString text = QString::fromUtf8(source);
  if (number >= 0) text.replace(forms, number == 1 ? QStringLiteral("\\1") : QStringLiteral("\\2"));
  return text;
}

}  // namespace desktop
