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

void WritePictures(const std::filesystem::path& folder, int count, int width, int height) {
  const std::filesystem::path pictures = folder / "DCIM" / "100KELVA";
  std::filesystem::create_directories(pictures);
  for (int number = 1; number <= count; ++number) {
    WriteFile(pictures / PictureName(number), EncodeJpeg(DrawScene(width, height, number - 1), kQuality));
  }
}
