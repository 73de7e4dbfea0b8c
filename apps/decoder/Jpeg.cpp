// Decodes and encodes JPEG files within bounds of memory.
#include "apps/decoder/Jpeg.h"

#include <turbojpeg.h>

#include <algorithm>
#include <memory>
#include <new>

#include "apps/commandline/Printable.h"
#include "apps/decoder/JpegKind.h"

namespace apps {
namespace {

// More than any camera has, and few enough that the memory stays small whatever a file claims: a file that comes row by
// row costs a sixty-fourth of its pixels, another one all of them.
constexpr long long kMostPixels = 200'000'000;
constexpr long long kMostPixelsAtOnce = 40'000'000;
constexpr int kQuality = 80;

struct Destroy {
  void operator()(void* handle) const { tjDestroy(handle); }
};
using Handle = std::unique_ptr<void, Destroy>;

struct Free {
  void operator()(unsigned char* bytes) const { tjFree(bytes); }
};

struct Size {
  int width;
  int height;
};

Handle Checked(tjhandle handle) {
  if (handle == nullptr) throw std::bad_alloc();
  return Handle(handle);
}

const unsigned char* Unsigned(std::span<const char> bytes) {
  return reinterpret_cast<const unsigned char*>(bytes.data());
}

std::string Complaint(const Handle& handle) {
  return Printable(tjGetErrorStr2(handle.get()));
}

Size SizeIn(const Handle& handle, std::span<const char> bytes) {
  Size size{};
  int subsampling = 0;
  int colours = 0;
  if (tjDecompressHeader3(handle.get(), Unsigned(bytes), bytes.size(), &size.width, &size.height, &subsampling,
                          &colours) != 0) {
    throw NoPicture("it is no JPEG file that can be drawn (" + Complaint(handle) + ")");
  }
  const long long most = ComesRowByRow(bytes) ? kMostPixels : kMostPixelsAtOnce;
  if (static_cast<long long>(size.width) * size.height > most) {
    throw NoPicture("it claims " + std::to_string(size.width) + " by " + std::to_string(size.height) +
                    " pixels, more than a thumbnail is drawn from");
  }
  return size;
}

// The smallest scale that leaves enough pixels; the decoder scales by eighths only.
Size ScaledFor(Size full, int longest) {
  for (int eighths = 1; eighths < 8; ++eighths) {
    const tjscalingfactor factor{eighths, 8};
    const Size scaled{TJSCALED(full.width, factor), TJSCALED(full.height, factor)};
    if (std::max(scaled.width, scaled.height) >= longest) return scaled;
  }
  return full;
}

}  // namespace

Decoded DecodeJpeg(std::span<const char> bytes, int longest) {
  const Handle handle = Checked(tjInitDecompress());
  const Size size = ScaledFor(SizeIn(handle, bytes), longest);
  Pixels image{size.width, size.height, {}};
  image.rgb.resize(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) * 3);
  // A progressive file may have scans without end; no real one comes near the decoder's own limit.
  const int result = tjDecompress2(handle.get(), Unsigned(bytes), bytes.size(), image.rgb.data(), size.width, 0,
                                   size.height, TJPF_RGB, TJFLAG_LIMITSCANS);
  if (result == 0) return {std::move(image), ""};
  const std::string complaint = Complaint(handle);
  if (tjGetErrorCode(handle.get()) != TJERR_WARNING) throw NoPicture("it cannot be drawn (" + complaint + ")");
  return {std::move(image), complaint};
}

std::string EncodeJpeg(const Pixels& image) {
  const Handle handle = Checked(tjInitCompress());
  unsigned char* memory = nullptr;
  unsigned long size = 0;
  const int result = tjCompress2(handle.get(), image.rgb.data(), image.width, 0, image.height, TJPF_RGB, &memory, &size,
                                 TJSAMP_420, kQuality, 0);
  const std::unique_ptr<unsigned char, Free> owner(memory);
  if (result != 0) throw NoPicture("its thumbnail cannot be stored (" + Complaint(handle) + ")");
  return std::string(reinterpret_cast<const char*>(memory), size);
}

}  // namespace apps
