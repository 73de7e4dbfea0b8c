// draw-pictures: JPEG files for a demonstration without a camera.
#include <cstdio>
#include <exception>

#include "tools/draw-pictures/JpegFile.h"

int main(int argc, char** argv) {
  if (argc != 2 || argv[1][0] == '-') {
    std::fputs("Usage: draw-pictures FOLDER\nDraws twelve JPEG files into FOLDER/DCIM/100KELVA.\n", stderr);
    return 2;
  }
  try {
    WritePictures(argv[1], 12, 1600, 1200);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "draw-pictures: %s\n", error.what());
    return 1;
  }
  return 0;
}
