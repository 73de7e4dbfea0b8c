#include "tools/draw-pictures/JpegFile.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

// jpeglib.h needs the names of <cstdio> before it.
#include <jpeglib.h>

namespace {

constexpr int kQuality = 90;

/// The encoder and the memory it fills, given back together.
class Compressor {
 public:
  Compressor() {
    info_.err = jpeg_std_error(&errors_);
    jpeg_create_compress(&info_);
    jpeg_mem_dest(&info_, &memory_, &size_);
  }
  ~Compressor() {
    jpeg_destroy_compress(&info_);
    std::free(memory_);
  }
  Compressor(const Compressor&) = delete;
  Compressor& operator=(const Compressor&) = delete;

  jpeg_compress_struct& Info() { return info_; }
  std::vector<unsigned char> Result() const { return {memory_, memory_ + size_}; }

 private:
  jpeg_compress_struct info_{};
  jpeg_error_mgr errors_{};
  unsigned char* memory_ = nullptr;
  unsigned long size_ = 0;
};

void Start(jpeg_compress_struct& info, const Image& image, int quality) {
  info.image_width = static_cast<JDIMENSION>(image.width);
  info.image_height = static_cast<JDIMENSION>(image.height);
  info.input_components = 3;
  info.in_color_space = JCS_RGB;
  jpeg_set_defaults(&info);
  jpeg_set_quality(&info, quality, TRUE);
  jpeg_start_compress(&info, TRUE);
}

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
  Compressor compressor;
  Start(compressor.Info(), image, quality);
  std::vector<unsigned char> row(static_cast<std::size_t>(image.width) * 3);
  auto next = image.rgb.begin();
  for (int y = 0; y < image.height; ++y) {
    const auto end = next + static_cast<std::ptrdiff_t>(row.size());
    row.assign(next, end);
    next = end;
    JSAMPROW pointer = row.data();
    jpeg_write_scanlines(&compressor.Info(), &pointer, 1);
  }
  jpeg_finish_compress(&compressor.Info());
  return compressor.Result();
}

void WritePictures(const std::filesystem::path& folder, int count, int width, int height) {
  const std::filesystem::path pictures = folder / "DCIM" / "100KELVA";
  std::filesystem::create_directories(pictures);
  for (int number = 1; number <= count; ++number) {
    WriteFile(pictures / PictureName(number), EncodeJpeg(DrawScene(width, height, number - 1), kQuality));
  }
}
