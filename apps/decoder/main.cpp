// kelva-thumbnail: decodes the pictures that `kelva` gives it on standard input, and answers there. It may do nothing else,
// because the pictures come from a camera that nobody has to trust.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "apps/decoder/Confine.h"
#include "apps/decoder/Jpeg.h"
#include "apps/decoder/Worker.h"

int main() {
  // Some processors' decoders look into files at their first use.
  apps::DecodeJpeg(apps::EncodeJpeg({8, 8, std::vector<std::uint8_t>(8 * 8 * 3)}), 8);
  if (!apps::Confine()) return apps::kCannotConfine;
  return apps::DrawAll(STDIN_FILENO) ? EXIT_SUCCESS : EXIT_FAILURE;
}
