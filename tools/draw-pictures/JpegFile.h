#ifndef KELVA_TOOLS_DRAW_PICTURES_JPEG_FILE_H_
#define KELVA_TOOLS_DRAW_PICTURES_JPEG_FILE_H_

#include <filesystem>
#include <string>
#include <vector>

#include "tools/draw-pictures/Scene.h"

/// The image as a baseline JPEG file. quality: 1 to 100.
std::vector<unsigned char> EncodeJpeg(const Image& image, int quality);

/// The JPEG file with the time at which it was taken, "2026:05:16 09:00:00", as a camera writes it (EXIF).
std::vector<unsigned char> WithTime(std::vector<unsigned char> jpeg, const std::string& time);

/// Writes `count` pictures, IMG_0001.JPG and on, into `folder`/DCIM/100KELVA, as a camera's storage has them: one an hour,
/// eight a day. Throws
/// std::runtime_error with a sentence that names the file when one cannot be written.
void WritePictures(const std::filesystem::path& folder, int count, int width, int height);

#endif  // KELVA_TOOLS_DRAW_PICTURES_JPEG_FILE_H_
