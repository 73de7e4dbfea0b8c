#include "tests/kernel/cases/Card.h"

#include <fstream>
#include <functional>
#include <iterator>
#include <random>

namespace fs = std::filesystem;

Card::Card(const std::string& name) : folder_("/tmp/card-" + name) {
  fs::remove_all(folder_);
  fs::create_directories(folder_);
}

Card::~Card() {
  fs::remove_all(folder_);
}

void Card::Put(const std::string& path, std::size_t size) const {
  fs::create_directories((folder_ / path).parent_path());
  std::string bytes(size, '\0');
  std::minstd_rand numbers(static_cast<unsigned>(std::hash<std::string>()(path)));
  for (char& byte : bytes) byte = static_cast<char>(numbers() >> 8);
  std::ofstream(folder_ / path, std::ios::binary) << bytes;
}

std::string Card::Read(const std::string& path) const {
  std::ifstream file(folder_ / path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

vcam::Options Card::Inserted(const std::string& serial) const {
  vcam::Options options;
  options.serial = serial;
  options.storage = folder_;
  return options;
}

void PutPictures(const Card& card) {
  card.Put("DCIM/100ABCDE/IMG_0001.JPG", kPictureSize);
  card.Put("DCIM/100ABCDE/IMG_0002.JPG", 131'072);
  card.Put("DCIM/101ABCDE/IMG_0003.TXT", 77);
}
