// Lines for the journal or the terminal.

#include "src/ui/linux/KelvaHelper/Report.h"

#include <unistd.h>

namespace helper {
namespace {

void WriteLine(int descriptor, const std::string& sentence) {
  const std::string line = "kelva-helper: " + sentence + "\n";
  // There is nowhere left to report that a report could not be written.
  static_cast<void>(::write(descriptor, line.data(), line.size()) < 0);
}

}  // namespace

void Say(const std::string& sentence) {
  WriteLine(STDOUT_FILENO, sentence);
}

void Complain(const std::string& sentence) {
  WriteLine(STDERR_FILENO, sentence);
}

std::string FirstLine(const std::string& text) {
  return text.substr(0, text.find('\n'));
}

}  // namespace helper
