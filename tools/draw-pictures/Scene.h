#ifndef KELVA_TOOLS_DRAW_PICTURES_SCENE_H_
#define KELVA_TOOLS_DRAW_PICTURES_SCENE_H_

#include <cstdint>
#include <vector>

/// An image of 8-bit red, green and blue, row by row from the top, without padding.
struct Image {
  int width;
  int height;
  std::vector<std::uint8_t> rgb;
};

/// A landscape: sky, sun and three ridges. The same arguments give the same image on every machine; `number` chooses the
/// hour of the day, so that the pictures of a series differ.
Image DrawScene(int width, int height, int number);

#endif  // KELVA_TOOLS_DRAW_PICTURES_SCENE_H_
