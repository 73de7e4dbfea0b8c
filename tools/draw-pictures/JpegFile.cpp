// Encodes drawn scenes as JPEG files and lays them out as a camera's storage does.
#include "tools/draw-pictures/JpegFile.h"

#include <turbojpeg.h>

#include <cstddef>
#include <fstream>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>

namespace {

constexpr int kQuality = 90;

struct Destroy {
  void operator()(void* encoder) const { tjDestroy(encoder); }
};

struct Free {
  void operator()(unsigned char* bytes) const { tjFree(bytes); }
};

std::string PictureName(int number) {
  std::string digits = std::to_string(number);
  digits.insert(0, digits.size() < 4 ? 4 - digits.size() : 0, '0');
  return "IMG_" + digits + ".JPG";
}

std::string TwoDigits(int number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

std::string TimeOf(int number) {
  constexpr int kADay = 8;
  return "2026:05:" + TwoDigits(16 + number / kADay) + " " + TwoDigits(9 + number % kADay) + ":00:00";
}

void WriteFile(const std::filesystem::path& path, const std::vector<unsigned char>& bytes) {
  std::ofstream file(path, std::ios::binary);
  for (unsigned char byte : bytes) file.put(static_cast<char>(byte));
  file.close();
  if (!file) {
    throw std::runtime_error("Cannot write " + path.string() +
                             "; check that the folder can be written and is not full.");
  }
}

}  // namespace

std::vector<unsigned char> EncodeJpeg(const Image& image, int quality) {
  const std::unique_ptr<void, Destroy> encoder(tjInitCompress());
  if (encoder == nullptr) throw std::bad_alloc();
  unsigned char* bytes = nullptr;
  unsigned long size = 0;
  const int outcome = tjCompress2(encoder.get(), image.rgb.data(), image.width, 0, image.height, TJPF_RGB, &bytes,
                                  &size, TJSAMP_420, quality, 0);
  const std::unique_ptr<unsigned char, Free> encoded(bytes);
  if (outcome != 0) throw std::runtime_error("Cannot encode a picture: " + std::string(tjGetErrorStr2(encoder.get())));
  return {encoded.get(), encoded.get() + size};
}

std::vector<unsigned char> WithTime(std::vector<unsigned char> jpeg, const std::string& time) {
  // After the first marker: a segment of 72 bytes, of which 64 are a TIFF file. Its directory, at 8, has one entry: the
  // place of another one, at 26, whose one entry is the text of 20 bytes at 44.
  std::vector<unsigned char> segment = {0xFF, 0xE1, 0,    72,   'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 8, 0, 0, 0,
                                        1,    0,    0x69, 0x87, 4,   0,   1,   0,   0, 0, 26,  0,   0,  0, 0, 0, 0, 0,
                                        1,    0,    0x03, 0x90, 2,   0,   20,  0,   0, 0, 44,  0,   0,  0, 0, 0, 0, 0};
  if (time.size() != 19) throw std::invalid_argument("A time of EXIF has 19 letters, unlike \"" + time + "\".");
  segment.insert(segment.end(), time.c_str(), time.c_str() + time.size() + 1);
  jpeg.insert(jpeg.begin() + 2, segment.begin(), segment.end());
  return jpeg;
}

void WritePictures(const std::filesystem::path& folder, int count, int width, int height) {
  const std::filesystem::path pictures = folder / "DCIM" / "100KELVA";
  std::filesystem::create_directories(pictures);
  for (int number = 1; number <= count; ++number) {
    WriteFile(pictures / PictureName(number),
              WithTime(EncodeJpeg(DrawScene(width, height, number - 1), kQuality), TimeOf(number - 1)));
  }
}
