#include "tests/random/Session.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace tests::random {
namespace {

std::unique_ptr<vcam::VirtualCamera> MakeDevice(Random& random, const vcam::test::ScratchStorage& scratch) {
  vcam::Options options = scratch.CameraOptions();
  const std::array layouts{vcam::CatalogueLayout::Standard(), vcam::CatalogueLayout::Reordered(),
                           vcam::CatalogueLayout::UnknownFields(), vcam::CatalogueLayout::Wide()};
  options.catalogue = layouts[Between(random, 0, layouts.size() - 1)];
  return std::make_unique<vcam::VirtualCamera>(options);
}

bool IsBelowDcim(const std::string& path) {
  return path.rfind("DCIM/", 0) == 0;
}

}  // namespace

Session::Session(std::uint64_t seed, std::size_t chunkSize)
    : random_(seed),
      tree_(Tree::Grow(random_, chunkSize)),
      device_(MakeDevice(random_, scratch_)),
      camera_(*device_, static_cast<int>(chunkSize)) {
  tree_.WriteTo(scratch_.Path());
}

void Session::Run(std::size_t commands) {
  constexpr std::array<Step, 15> kSteps{
      &Session::ReadAFile,        &Session::ReadAMissingFile, &Session::WriteAFile,       &Session::DeleteAFile,
      &Session::ReadTheCatalogue, &Session::ReadAPicture,     &Session::DeleteAPicture,   &Session::CaptureAPicture,
      &Session::ListADirectory,   &Session::WalkADirectory,   &Session::ReadCrashLogs,    &Session::ReadCalibration,
      &Session::ReadABatch,       &Session::DeleteABatch,     &Session::ReadCompressedRaw};
  for (std::size_t i = 0; i < commands && !testing::Test::HasFailure(); ++i) {
    (this->*kSteps[Between(random_, 0, kSteps.size() - 1)])();
  }
  EXPECT_EQ(Tree::ReadBack(scratch_.Path()), tree_.files);
}

const std::string* Session::Content(const std::string& path) const {
  const auto found = tree_.files.find(path);
  return found == tree_.files.end() ? nullptr : &found->second;
}

std::string Session::AnyFile() {
  if (tree_.files.empty()) return "none";
  return std::next(tree_.files.begin(), static_cast<std::ptrdiff_t>(Between(random_, 0, tree_.files.size() - 1)))
      ->first;
}

std::string Session::AnyDirectory() {
  const std::size_t index = Between(random_, 0, tree_.directories.size());
  if (index == tree_.directories.size()) return "";
  return *std::next(tree_.directories.begin(), static_cast<std::ptrdiff_t>(index));
}

std::string Session::AnyKey() {
  std::vector<const std::string*> contents;
  for (const auto& [path, content] : tree_.files) {
    if (IsBelowDcim(path)) contents.push_back(&content);
  }
  if (contents.empty() || OnceIn(random_, 5)) return KeyOf("no file has these bytes");
  return KeyOf(*contents[Between(random_, 0, contents.size() - 1)]);
}

std::string Session::FirstWithKey(const std::string& key) const {
  for (const auto& [path, content] : tree_.files) {
    if (IsBelowDcim(path) && KeyOf(content) == key) return path;
  }
  return {};
}

std::vector<PictureName> Session::CataloguedPictures() const {
  std::vector<PictureName> pictures;
  for (const PictureName& picture : tree_.pictures) {
    if (std::any_of(kExtensions.begin(), kExtensions.end(),
                    [&](const std::string& extension) { return Content(picture.File(extension)) != nullptr; })) {
      pictures.push_back(picture);
    }
  }
  std::sort(pictures.begin(), pictures.end(), [](const PictureName& a, const PictureName& b) {
    return std::pair(a.Directory(), a.File("")) < std::pair(b.Directory(), b.File(""));
  });
  return pictures;
}

const std::string* Session::Sibling(const std::string& path, const std::string& extension) const {
  for (const PictureName& picture : tree_.pictures) {
    for (const std::string& own : kExtensions) {
      if (picture.File(own) == path) return Content(picture.File(extension));
    }
  }
  return nullptr;
}

void Session::Walk(const std::string& directory, std::vector<std::pair<std::string, long long>>& found) const {
  for (const auto& [name, size] : tree_.Children(directory)) {
    const std::string path = directory + "/" + name;
    if (size) {
      found.emplace_back(OnCamera(path), static_cast<long long>(*size));
    } else {
      Walk(path, found);
    }
  }
}

}  // namespace tests::random
