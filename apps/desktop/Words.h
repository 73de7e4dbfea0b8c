#ifndef KELVA_APPS_DESKTOP_WORDS_H_
#define KELVA_APPS_DESKTOP_WORDS_H_

#include <QString>
#include <QTranslator>

namespace desktop {

/// "412 MB", in powers of 1000 and the words of the user's language.
QString SizeText(qint64 bytes);
/// "less than a minute", "4 minutes": what is left of a long work. Empty for a negative number, which says that nobody knows.
QString TimeLeftText(qint64 seconds);

/// The number in English texts. A text that counts has both forms in brackets, "%n (picture|pictures)"; a translation has those of
/// its own language and takes their place when it is installed after this one.
class EnglishNumbers : public QTranslator {
 public:
  using QTranslator::QTranslator;
  QString translate(const char* context, const char* source, const char* comment, int number) const override;
  bool isEmpty() const override { return false; }
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_WORDS_H_
