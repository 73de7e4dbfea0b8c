// The short-lived program that launches the desktop application.

#include <string>
#include <vector>

#include "src/ui/linux/KelvaHelper/opener/Opener.h"

int main(int argc, char* argv[]) {
  return opener::Open({argv + 1, argv + argc});
}
