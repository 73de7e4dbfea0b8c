#ifndef KELVA_APPS_DECODER_TESTING_TINY_JPEG_H_
#define KELVA_APPS_DECODER_TESTING_TINY_JPEG_H_

#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace apps {

/// JPEG files for tests, made bit by bit without an encoder: grey squares of 8 by 8 pixels, each of one level.
class TinyJpeg {
 public:
  /// `columns` squares in a row. `parts` are whole marker segments for the place after the start, such as ExifPart.
  static std::string File(int columns, const std::vector<int>& greys, const std::string& parts = "") {
    TinyJpeg jpeg;
    int before = 128;
    for (const int grey : greys) {
      jpeg.PutSquare(grey - before);
      before = grey;
    }
    const int rows = static_cast<int>(greys.size()) / columns;
    return "\xFF\xD8" + parts + Tables() + Frame(columns * 8, rows * 8) + Scan() + jpeg.Finish() + "\xFF\xD9";
  }

  /// An APP1 segment with EXIF: an orientation in the first directory, a time of taking in the second. Little-endian.
  static std::string ExifPart(int orientation, const std::string& time = "2026:03:14 15:09:26") {
    using namespace std::string_literals;
    std::string tiff = "II*\0\x08\0\0\0"s;
    tiff += "\x02\0"s;                                                                 // two entries:
    tiff += "\x12\x01\x03\0\x01\0\0\0"s + static_cast<char>(orientation) + "\0\0\0"s;  // 0x0112 SHORT 1
    tiff += "\x69\x87\x04\0\x01\0\0\0\x26\0\0\0"s + "\0\0\0\0"s;                       // 0x8769 LONG 1 at 38; no more
    tiff += "\x01\0\x03\x90\x02\0\x14\0\0\0\x38\0\0\0"s + "\0\0\0\0"s;                 // 0x9003 ASCII 20 at 56; no more
    tiff += time + "\0"s;
    return Segment('\xE1', "Exif\0\0"s + tiff);
  }

  /// As ExifPart, with a thumbnail: a JPEG file of its own. The third directory stands behind the time.
  static std::string ExifPartWith(const std::string& thumbnail, int orientation = 1,
                                  const std::string& time = "2026:03:14 15:09:26") {
    using namespace std::string_literals;
    constexpr std::size_t kTiff = 10;                // of the segment: marker, size, "Exif"
    constexpr std::size_t kNext = kTiff + 34;        // where the second directory is named
    std::string part = ExifPart(orientation, time);  // 76 bytes of TIFF: to the end of the time
    part.replace(kNext, 4, "\x4C\0\0\0"s);           // at 76
    part += "\x02\0"s;                               // two entries:
    part += "\x01\x02\x04\0\x01\0\0\0\x6A\0\0\0"s;   // 0x0201 LONG 1: the thumbnail is at 106
    part += "\x02\x02\x04\0\x01\0\0\0"s;             // 0x0202 LONG 1: its size
    for (const unsigned shift : {0U, 8U, 16U, 24U}) part += static_cast<char>(thumbnail.size() >> shift);
    part += "\0\0\0\0"s + thumbnail;
    return Segment('\xE1', part.substr(4));
  }

  static std::string Segment(char marker, const std::string& content) {
    const std::size_t size = content.size() + 2;
    return std::string("\xFF") + marker + static_cast<char>(size >> 8) + static_cast<char>(size) + content;
  }

 private:
  // All steps of quantisation are 8, so that the coefficient of a square is its level. The codes for the number of bits
  // of a difference are that number in four bits; the one code for the rest of a square, "nothing", is the bit 0.
  static std::string Tables() {
    using namespace std::string_literals;
    const std::string quantisation = "\0"s + std::string(64, 8);
    const std::string direct = "\0\0\0\0\x09"s + std::string(12, '\0') + "\0\x01\x02\x03\x04\x05\x06\x07\x08"s;
    const std::string rest = "\x10\x01"s + std::string(15, '\0') + "\0"s;
    return Segment('\xDB', quantisation) + Segment('\xC4', direct) + Segment('\xC4', rest);
  }
  static std::string Frame(int width, int height) {
    std::string content = "\x08";
    for (const int side : {height, width}) content += {static_cast<char>(side >> 8), static_cast<char>(side)};
    return Segment('\xC0', content + std::string("\x01\x01\x11\0", 4));
  }
  static std::string Scan() { return Segment('\xDA', std::string("\x01\x01\0\0\x3F\0", 6)); }

  void PutSquare(int difference) {
    int bits = 0;
    while ((std::abs(difference) >> bits) != 0) ++bits;
    Put(bits, 4);
    Put(difference < 0 ? difference + (1 << bits) - 1 : difference, bits);
    Put(0, 1);
  }
  void Put(int value, int count) {
    while (count-- > 0) bits_ += ((value >> count) & 1) != 0 ? '1' : '0';
  }
  std::string Finish() const {
    std::string bytes;
    for (std::size_t at = 0; at < bits_.size(); at += 8) {
      std::string eight = bits_.substr(at, 8);
      eight.resize(8, '1');
      bytes += static_cast<char>(std::stoi(eight, nullptr, 2));
      if (bytes.back() == '\xFF') bytes += '\0';
    }
    return bytes;
  }

  std::string bits_;
};

}  // namespace apps

#endif  // KELVA_APPS_DECODER_TESTING_TINY_JPEG_H_
