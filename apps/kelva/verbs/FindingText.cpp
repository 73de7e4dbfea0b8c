// What the doctor found, for a terminal or a file.

#include "apps/kelva/verbs/FindingText.h"

#include "apps/commandline/Printable.h"

namespace apps {

std::string TextOf(const std::vector<doctor::Finding>& findings) {
  std::string text;
  for (const doctor::Finding& finding : findings) {
    text += Printable(finding.sentence) + "\n";
    if (!finding.command.empty()) text += "  To mend it:  " + Printable(finding.command) + "\n";
    if (!finding.advice.empty()) text += "  " + Printable(finding.advice) + "\n";
  }
  return text;
}

}  // namespace apps
