// Copies any part of a camera's file to standard output: part PATH OFFSET COUNT, in pieces of 64 KiB.
#include <kelva/Camera.h>
#include <kelva/FileReader.h>

#include <algorithm>
#include <iostream>
#include <stdexcept>

namespace {

void CopyPart(kelva::FileReader& reader, std::uint64_t offset, std::uint64_t count) {
  std::vector<char> piece(65536);
  while (count > 0) {
    const std::size_t wanted = std::min<std::uint64_t>(count, piece.size());
    const std::size_t came = reader.Read(offset, std::span(piece).first(wanted));
    if (came == 0) return;  // the end of the file
    std::cout.write(piece.data(), static_cast<std::streamsize>(came));
    offset += came;
    count -= came;
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 4) throw std::runtime_error("Usage: part PATH OFFSET COUNT");
    const std::vector<boost::shared_ptr<Camera>> cameras = Camera::EnumerateCameras(false, "", false, 0);
    if (cameras.empty() || !cameras.front()->Open()) throw std::runtime_error("No camera can be used.");
    kelva::FileReader reader(cameras.front(), argv[1]);
    CopyPart(reader, std::stoull(argv[2]), std::stoull(argv[3]));
    std::cerr << "The file has " << reader.Size() << " bytes; the camera's battery is at "
              << cameras.front()->BatteryLevel() << ".\n";
    // The question about the battery was another command, so the file has to be taken up again.
    reader.Select();
    std::vector<char> next(16);
    std::cerr << "Bytes that would follow: " << reader.ReadOn(next) << "\n";
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
}
