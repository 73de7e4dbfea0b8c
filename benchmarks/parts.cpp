// The two halves of `kelva sync`, each alone: reading all pictures of a camera, and writing files that are flushed.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <boost/shared_ptr.hpp>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "bus/BusClient.h"
#include "darwin/registry/Registry.h"
#include "src/wifi/Camera.h"

namespace {

constexpr int kFirstType = 1;

boost::shared_ptr<Camera> Find(const std::string& serial) {
  for (const auto& camera : Camera::EnumerateCameras(false, "", false, 0)) {
    if (camera->CompareSn(serial.c_str())) return camera;
  }
  throw std::runtime_error("there is no camera " + serial);
}

/// Reads every picture's first file and drops it.
void Read(const std::string& socket, const std::string& serial) {
  darwin::Registry::Shared().SetSource(bus::ConnectBus(socket));
  const auto camera = Find(serial);
  if (!camera->Open()) throw std::runtime_error("cannot open the camera");
  std::size_t bytes = 0;
  for (const DcfObj& picture : camera->GetDcf()) {
    bytes += camera->ReadFile(picture, kFirstType, nullptr, nullptr, true).size();
  }
  camera->Close();
  if (bytes == 0) throw std::runtime_error("the camera has no pictures");
}

void WriteOne(const std::string& path, const std::vector<char>& bytes) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  const bool written = fd >= 0 && ::write(fd, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
  if (!written || ::fdatasync(fd) != 0 || ::close(fd) != 0) throw std::runtime_error("cannot write " + path);
}

/// Writes and flushes as many files of one size, on as many threads.
void Write(const std::string& folder, int count, std::size_t size, int threads) {
  ::mkdir(folder.c_str(), 0777);
  std::vector<char> bytes(size);
  for (char& byte : bytes) byte = static_cast<char>(std::rand());
  std::atomic<int> next = 0;
  std::vector<std::jthread> writers;
  for (int i = 0; i < threads; ++i) {
    writers.emplace_back([&] {
      for (int number = next++; number < count; number = next++) WriteOne(folder + "/" + std::to_string(number), bytes);
    });
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  try {
    if (words.size() == 3 && words[0] == "read") {
      Read(words[1], words[2]);
    } else if (words.size() == 5 && words[0] == "write") {
      Write(words[1], std::stoi(words[2]), std::stoul(words[3]), std::stoi(words[4]));
    } else {
      std::cerr << "Usage: bench-parts read SOCKET SERIAL | write FOLDER COUNT SIZE THREADS\n";
      return 2;
    }
  } catch (const std::exception& error) {
    std::cerr << "bench-parts: " << error.what() << ".\n";
    return 1;
  }
}
