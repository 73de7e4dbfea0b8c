// kelva-thumbnail: decodes the pictures that `kelva` gives it on standard input, and answers there. It may do nothing else,
// because the pictures come from a camera that nobody has to trust.
#include <unistd.h>

#include <cstdlib>

#include "apps/kelva/thumbnail/Confine.h"
#include "apps/kelva/thumbnail/Worker.h"

int main() {
  if (!apps::Confine()) return EXIT_FAILURE;
  return apps::DrawAll(STDIN_FILENO) ? EXIT_SUCCESS : EXIT_FAILURE;
}
