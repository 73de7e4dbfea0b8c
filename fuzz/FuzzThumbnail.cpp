// What the process that decodes pictures reads, and what the tool reads from it: JPEG files, EXIF, requests, answers.

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <string>
#include <thread>
#include <vector>

#include "apps/decoder/Drawing.h"
#include "apps/decoder/Exif.h"
#include "apps/decoder/JpegKind.h"
#include "apps/decoder/Worker.h"
#include "base/FileDescriptor.h"
#include "fuzz/InputReader.h"

namespace {

using apps::kAnswerHead;

/// Whether some frame of the bytes claims so many pixels that a fuzzer would do nothing but fill memory. The bounds for
/// those have tests of their own.
bool ClaimsMuch(std::span<const char> bytes) {
  constexpr long long kMostPixels = 1 << 20;
  const auto at = [&](std::size_t i) { return static_cast<long long>(static_cast<unsigned char>(bytes[i])); };
  for (std::size_t i = 0; i + 8 < bytes.size(); ++i) {
    if (at(i) != 0xFF || (at(i + 1) & 0xF0) != 0xC0) continue;
    if ((at(i + 5) << 8 | at(i + 6)) * (at(i + 7) << 8 | at(i + 8)) > kMostPixels) return true;
  }
  return false;
}

/// An answer of the process, as the tool reads it, in memory of just its size.
bool ReadAnswer(std::span<const std::uint8_t> bytes) {
  if (bytes.size() < kAnswerHead) return false;
  const auto head = bytes.first<kAnswerHead>();
  const std::vector<std::uint8_t> rest(bytes.begin() + kAnswerHead, bytes.end());
  return apps::SizeAfter(head) == rest.size() && apps::DecodeAnswer(head, rest).has_value();
}

void DrawOne(std::span<const char> file) {
  apps::ComesRowByRow(file);
  apps::ReadExif(file);
  apps::ReadExifThumbnail(file);
  if (ClaimsMuch(file)) return;
  // The tool understands whatever the process says of a picture.
  if (!ReadAnswer(apps::EncodeAnswer(apps::Draw(file)))) __builtin_trap();
}

/// Some requests, for pictures or for times, each with the size of its file, or with another one.
base::Bytes Requests(InputReader& input) {
  constexpr std::array<std::uint64_t, 4> kWrongSizes = {1, apps::kLargestPicture + 1, ~std::uint64_t{0},
                                                        std::uint64_t{1} << 63};
  base::Bytes stream;
  while (!input.AtEnd()) {
    const std::uint8_t kind = input.Byte();
    const auto file = input.Bytes(input.Byte() * 8U);
    if (ClaimsMuch({reinterpret_cast<const char*>(file.data()), file.size()})) continue;
    base::Append(stream, (kind < kWrongSizes.size() ? file.size() + kWrongSizes.at(kind) : file.size()) |
                             (kind % 2 == 0   ? 0
                              : kind % 4 == 1 ? apps::kTimeOnly
                                              : apps::kStartOnly));
    stream.insert(stream.end(), file.begin(), file.end());
  }
  // The bytes of two requests may claim much together.
  if (ClaimsMuch({reinterpret_cast<const char*>(stream.data()), stream.size()})) stream.clear();
  return stream;
}

void Serve(const base::Bytes& stream) {
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) return;
  const base::FileDescriptor near(ends[0]);
  base::FileDescriptor far(ends[1]);
  // Answers may be larger than a socket's buffer.
  std::thread answers([&near] {
    std::array<char, 4096> buffer{};
    while (::read(near.Get(), buffer.data(), buffer.size()) > 0) {
    }
  });
  ::send(near.Get(), stream.data(), stream.size(), MSG_NOSIGNAL);
  ::shutdown(near.Get(), SHUT_WR);
  apps::DrawAll(far.Get());
  far.Reset();
  answers.join();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  InputReader input(data, size);
  switch (input.Byte() % 4) {
    case 0: {
      Serve(Requests(input));
      break;
    }
    case 1: {
      ReadAnswer(input.Rest());
      break;
    }
    default: {
      const auto bytes = input.Rest();
      const std::vector<char> file(bytes.begin(), bytes.end());
      DrawOne(file);
    }
  }
  return 0;
}
