#include "tests/random/Tree.h"

#include <openssl/sha.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "base/Hex.h"

namespace tests::random {
namespace {

std::string Digits(int number, std::size_t width) {
  const std::string text = std::to_string(number);
  return std::string(width > text.size() ? width - text.size() : 0, '0') + text;
}

std::string RandomText(Random& random, std::size_t length, const std::string& letters) {
  std::string text;
  for (std::size_t i = 0; i < length; ++i) text += letters[Between(random, 0, letters.size() - 1)];
  return text;
}

// No letter of these makes a name that the catalogue takes for a picture's by accident: none is a digit.
const std::string kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghij_- !";

}  // namespace

std::size_t Between(Random& random, std::size_t low, std::size_t high) {
  return std::uniform_int_distribution<std::size_t>(low, high)(random);
}

bool OnceIn(Random& random, std::size_t times) {
  return Between(random, 1, times) == 1;
}

std::string PictureName::Directory() const {
  return "DCIM/" + Digits(directoryNumber, 3) + suffix;
}

std::string PictureName::File(const std::string& extension) const {
  return Directory() + "/" + prefix + Digits(fileNumber, 4) + "." + extension;
}

std::string Tree::RandomContent(Random& random) const {
  std::size_t size = Between(random, 0, 200);
  if (OnceIn(random, chunkSize_ > 10'000 ? 8 : 2)) {
    size = Between(random, 1, 3) * chunkSize_ + Between(random, 0, 2) - 1;
  }
  if (OnceIn(random, 8)) size = Between(random, 0, 4);
  std::string content(size, '\0');
  for (char& c : content) c = static_cast<char>(random());
  return content;
}

void Tree::Put(const std::string& path, std::string content) {
  for (std::size_t end = path.find('/'); end != std::string::npos; end = path.find('/', end + 1)) {
    directories.insert(path.substr(0, end));
  }
  files[path] = std::move(content);
}

Tree Tree::Grow(Random& random, std::size_t chunkSize) {
  Tree tree(chunkSize);
  tree.GrowPictures(random);
  tree.GrowOthers(random);
  return tree;
}

void Tree::GrowPictures(Random& random) {
  std::set<std::string> taken;
  for (std::size_t count = Between(random, 0, 6); count > 0; --count) {
    PictureName picture{static_cast<int>(Between(random, 100, 101)), OnceIn(random, 2) ? "ABCDE" : "",
                        OnceIn(random, 3) ? "" : "IMG_", static_cast<int>(Between(random, 0, 20))};
    if (OnceIn(random, 4)) picture.suffix = RandomText(random, Between(random, 0, 7), kLetters);
    if (OnceIn(random, 4)) picture.prefix = RandomText(random, Between(random, 0, 7), kLetters);
    if (!taken.insert(picture.File("")).second) continue;
    const std::size_t present = Between(random, 1, 15);
    for (std::size_t type = 0; type < kExtensions.size(); ++type) {
      if ((present >> type & 1) != 0) Put(picture.File(kExtensions[type]), RandomContent(random));
    }
    pictures.push_back(picture);
  }
}

void Tree::GrowOthers(Random& random) {
  for (std::size_t count = Between(random, 0, 4); count > 0; --count) {
    std::string path = OnceIn(random, 2) ? "DCIM" : "MISC";
    for (std::size_t depth = Between(random, 0, 3); depth > 0; --depth) path += "/D" + RandomText(random, 3, kLetters);
    Put(path + "/F" + RandomText(random, Between(random, 1, 12), kLetters) + "x", RandomContent(random));
  }
  for (std::size_t count = Between(random, 0, 3); count > 0; --count) {
    Put("CRASH/" + RandomText(random, Between(random, 1, 17), kLetters) + "x", RandomContent(random));
  }
  for (std::size_t count = Between(random, 0, OnceIn(random, 20) ? 40 : 4); count > 0; --count) {
    Put("CALIB/" + RandomText(random, Between(random, 1, 30), kLetters) + "x", RandomContent(random));
  }
}

void Tree::WriteTo(const std::filesystem::path& folder) const {
  for (const std::string& directory : directories) std::filesystem::create_directories(folder / directory);
  for (const auto& [path, content] : files) std::ofstream(folder / path, std::ios::binary) << content;
}

std::map<std::string, std::string> Tree::ReadBack(const std::filesystem::path& folder) {
  std::map<std::string, std::string> found;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    const std::string path = entry.path().lexically_relative(folder).string();
    if (!entry.is_regular_file() || path.rfind(".kelva/", 0) == 0) continue;
    std::ifstream file(entry.path(), std::ios::binary);
    found[path] = {std::istreambuf_iterator<char>(file), {}};
  }
  return found;
}

std::map<std::string, std::optional<std::size_t>> Tree::Children(const std::string& directory) const {
  const std::string start = directory.empty() ? "" : directory + "/";
  const auto isChild = [&](const std::string& path) {
    return path.size() > start.size() && path.rfind(start, 0) == 0 && path.find('/', start.size()) == std::string::npos;
  };
  std::map<std::string, std::optional<std::size_t>> children;
  for (const std::string& path : directories) {
    if (isChild(path)) children[path.substr(start.size())] = std::nullopt;
  }
  for (const auto& [path, content] : files) {
    if (isChild(path)) children[path.substr(start.size())] = content.size();
  }
  return children;
}

std::string OnCamera(const std::string& path) {
  std::string camera = "I:\\" + path;
  std::replace(camera.begin(), camera.end(), '/', '\\');
  return camera;
}

std::string KeyOf(const std::string& content) {
  unsigned char digest[SHA_DIGEST_LENGTH];
  SHA1(reinterpret_cast<const unsigned char*>(content.data()), content.size(), digest);
  return base::Hex(digest);
}

}  // namespace tests::random
