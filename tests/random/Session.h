#ifndef KELVA_TESTS_RANDOM_SESSION_H_
#define KELVA_TESTS_RANDOM_SESSION_H_

#include "tests/random/DirectCamera.h"
#include "tests/random/Tree.h"
#include "vcam/camera/testing/TestSupport.h"

namespace tests::random {

/// One storage tree, one camera over it and a sequence of commands, each compared with the model at once. Failures are
/// reported through GoogleTest.
class Session {
 public:
  Session(std::uint64_t seed, std::size_t chunkSize);

  /// Runs this many commands, and at last compares the folder with the model.
  void Run(std::size_t commands);

 private:
  using Step = void (Session::*)();

  void ReadAFile();
  void ReadAMissingFile();
  void WriteAFile();
  void DeleteAFile();
  void ReadTheCatalogue();
  void ReadAPicture();
  void DeleteAPicture();
  void CaptureAPicture();
  void ListADirectory();
  void WalkADirectory();
  void ReadCrashLogs();
  void ReadCalibration();
  void ReadABatch();
  void DeleteABatch();
  void ReadCompressedRaw();

  /// The pictures that still have a file, in the order of the catalogue.
  std::vector<PictureName> CataloguedPictures() const;
  const std::string* Content(const std::string& path) const;
  std::string AnyFile();
  std::string AnyDirectory();
  /// A key of a file below DCIM as a rule, else one that no file has.
  std::string AnyKey();
  /// The first file below DCIM with this key, or an empty path.
  std::string FirstWithKey(const std::string& key) const;
  /// Another file of the picture that `path` belongs to, or null.
  const std::string* Sibling(const std::string& path, const std::string& extension) const;
  void ExpectBundle(const std::vector<_Sha1obj>& got, const std::string& folder, bool wholePaths,
                    std::size_t most) const;
  void Walk(const std::string& directory, std::vector<std::pair<std::string, long long>>& found) const;

  Random random_;
  vcam::test::ScratchStorage scratch_;
  Tree tree_;
  std::unique_ptr<vcam::VirtualCamera> device_;
  DirectCamera camera_;
};

}  // namespace tests::random

#endif  // KELVA_TESTS_RANDOM_SESSION_H_
