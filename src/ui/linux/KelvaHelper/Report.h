#ifndef KELVA_UI_LINUX_KELVA_HELPER_REPORT_H_
#define KELVA_UI_LINUX_KELVA_HELPER_REPORT_H_

#include <string>

namespace helper {

/// Writes "kelva-helper: SENTENCE" and a line feed in one piece, so that lines of several processes never mix: Say to
/// standard output, Complain to standard error.
void Say(const std::string& sentence);
void Complain(const std::string& sentence);

/// The first line of an error's text. The rest is a trace of calls, which does not help the reader of a journal.
std::string FirstLine(const std::string& text);

}  // namespace helper

#endif  // KELVA_UI_LINUX_KELVA_HELPER_REPORT_H_
