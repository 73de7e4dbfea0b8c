#ifndef KELVA_UI_LINUX_KELVA_HELPER_OPENER_REPORT_H_
#define KELVA_UI_LINUX_KELVA_HELPER_OPENER_REPORT_H_

#include <string>

namespace opener {

/// Writes "kelva-open: SENTENCE" and a line feed in one piece: Say to standard output, Complain to standard error. The
/// journal has both.
void Say(const std::string& sentence);
void Complain(const std::string& sentence);

}  // namespace opener

#endif  // KELVA_UI_LINUX_KELVA_HELPER_OPENER_REPORT_H_
