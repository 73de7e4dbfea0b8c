// Lines of the opener for the journal or the terminal.

#include "src/ui/linux/KelvaHelper/opener/Report.h"

#include <cstdio>

namespace opener {
namespace {

void WriteLine(std::FILE* stream, const std::string& sentence) {
  const std::string line = "kelva-open: " + sentence + "\n";
  std::fwrite(line.data(), 1, line.size(), stream);
  std::fflush(stream);
}

}  // namespace

void Say(const std::string& sentence) {
  WriteLine(stdout, sentence);
}

void Complain(const std::string& sentence) {
  WriteLine(stderr, sentence);
}

}  // namespace opener
