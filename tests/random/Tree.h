#ifndef KELVA_TESTS_RANDOM_TREE_H_
#define KELVA_TESTS_RANDOM_TREE_H_

#include <array>
#include <filesystem>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tests::random {

using Random = std::mt19937_64;

/// A number from `low` to `high`, both included.
std::size_t Between(Random& random, std::size_t low, std::size_t high);
/// True once in `times`.
bool OnceIn(Random& random, std::size_t times);

/// One picture as its names say it.
struct PictureName {
  int directoryNumber = 0;
  std::string suffix;
  std::string prefix;
  int fileNumber = 0;

  std::string Directory() const;
  std::string File(const std::string& extension) const;
};

/// What a storage folder holds: the model that the camera's answers are compared with. Paths as in the folder, '/'
/// between the names.
class Tree {
 public:
  explicit Tree(std::size_t chunkSize) : chunkSize_(chunkSize) {}

  /// A tree of pictures, other files, crash logs and calibration, some of them empty, many of a size near a multiple of
  /// the chunk size.
  static Tree Grow(Random& random, std::size_t chunkSize);

  std::string RandomContent(Random& random) const;
  void Put(const std::string& path, std::string content);
  void WriteTo(const std::filesystem::path& folder) const;
  /// What the folder holds now, the camera's state folder left out.
  static std::map<std::string, std::string> ReadBack(const std::filesystem::path& folder);

  std::map<std::string, std::string> files;
  std::set<std::string> directories;
  std::vector<PictureName> pictures;  ///< as grown or captured; some of their files may be gone

  /// The entries of one directory by name: name, and the size unless it is a directory.
  std::map<std::string, std::optional<std::size_t>> Children(const std::string& directory) const;

 private:
  void GrowPictures(Random& random);
  void GrowOthers(Random& random);

  std::size_t chunkSize_;
};

inline const std::array<std::string, 4> kExtensions{"JPG", "RAW", "TXT", "128"};

/// The camera path of a path in the folder.
std::string OnCamera(const std::string& path);
/// SHA-1 in lower-case hexadecimal.
std::string KeyOf(const std::string& content);

}  // namespace tests::random

#endif  // KELVA_TESTS_RANDOM_TREE_H_
