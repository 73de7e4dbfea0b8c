#include <gmock/gmock.h>

#include <algorithm>

#include "tests/random/Session.h"

// The steps about files, pictures and directories.

namespace tests::random {
namespace {

std::string Text(const std::vector<char>& bytes) {
  return {bytes.begin(), bytes.end()};
}

struct Progress {
  std::vector<float> fractions;
  static void Note(void* context, float fraction) { static_cast<Progress*>(context)->fractions.push_back(fraction); }
};

void ExpectSamePicture(const DcfObj& got, const PictureName& expected) {
  EXPECT_EQ(std::string(got.directorySuffix), expected.suffix);
  EXPECT_EQ(std::string(got.filePrefix), expected.prefix);
  EXPECT_EQ(got.directoryNumber, expected.directoryNumber);
  EXPECT_EQ(got.fileNumber, expected.fileNumber);
}

unsigned int Has(const DcfObj& picture, std::size_t type) {
  return std::array{picture.hasJpg, picture.hasRaw, picture.hasTxt, picture.has128}[type];
}

}  // namespace

void Session::ReadAFile() {
  const std::string path = AnyFile();
  const std::string* content = Content(path);
  Progress progress;
  EXPECT_EQ(Text(camera_.ReadFile(OnCamera(path).c_str(), &Progress::Note, &progress, true)),
            content != nullptr ? *content : "");
  EXPECT_TRUE(std::is_sorted(progress.fractions.begin(), progress.fractions.end()));
  if (content != nullptr && !content->empty()) {
    ASSERT_FALSE(progress.fractions.empty());
    EXPECT_EQ(progress.fractions.front(), 0.0F);
  }
}

void Session::ReadAMissingFile() {
  for (const char* path : {R"(I:\DCIM\no such file)", R"(I:\..\etc\passwd)", "", R"(A:\x)"}) {
    EXPECT_TRUE(camera_.ReadFile(path, nullptr, nullptr, true).empty());
  }
}

void Session::WriteAFile() {
  // A new file, or one that is there.
  const std::string path = OnceIn(random_, 2) ? AnyFile() : "MISC/written";
  const std::string content = tree_.RandomContent(random_);
  if (path == "MISC/written" && tree_.directories.count("MISC") == 0) return;
  camera_.WriteFile(OnCamera(path).c_str(), content.data(), static_cast<int>(content.size()), nullptr, nullptr);
  tree_.Put(path, content);
}

void Session::DeleteAFile() {
  const std::string path = OnceIn(random_, 3) ? "DCIM/no such file" : AnyFile();
  EXPECT_EQ(camera_.DeleteFile(OnCamera(path).c_str()), tree_.files.erase(path) == 1);
}

void Session::ReadTheCatalogue() {
  const std::vector<PictureName> expected = CataloguedPictures();
  const std::vector<DcfObj> got = camera_.GetDcf();
  ASSERT_EQ(got.size(), expected.size());
  for (std::size_t i = 0; i < got.size(); ++i) {
    ExpectSamePicture(got[i], expected[i]);
    const std::string* first = nullptr;
    for (std::size_t type = 0; type < kExtensions.size(); ++type) {
      const std::string* content = Content(expected[i].File(kExtensions[type]));
      EXPECT_EQ(Has(got[i], type), content != nullptr ? 1U : 0U);
      if (first == nullptr) first = content;
    }
    EXPECT_EQ(std::string(got[i].block7), KeyOf(*first));
  }
}

void Session::ReadAPicture() {
  const std::vector<DcfObj> catalogue = camera_.GetDcf();
  const std::vector<PictureName> pictures = CataloguedPictures();
  if (catalogue.empty() || catalogue.size() != pictures.size()) return;
  const std::size_t index = Between(random_, 0, catalogue.size() - 1);
  const std::size_t type = Between(random_, 0, kExtensions.size() - 1);
  const std::string* content = Content(pictures[index].File(kExtensions[type]));
  if (content != nullptr) {
    EXPECT_EQ(Text(camera_.ReadFile(catalogue[index], static_cast<int>(type) + 1, nullptr, nullptr, true)), *content);
  } else {
    EXPECT_THROW(camera_.ReadFile(catalogue[index], static_cast<int>(type) + 1, nullptr, nullptr, true), CameraError);
  }
}

void Session::DeleteAPicture() {
  const std::vector<DcfObj> catalogue = camera_.GetDcf();
  const std::vector<PictureName> pictures = CataloguedPictures();
  if (catalogue.empty() || catalogue.size() != pictures.size()) return;
  const std::size_t index = Between(random_, 0, catalogue.size() - 1);
  EXPECT_TRUE(camera_.DeleteDcfObject(catalogue[index]));
  for (const std::string& extension : kExtensions) tree_.files.erase(pictures[index].File(extension));
  EXPECT_FALSE(camera_.DeleteDcfObject(catalogue[index])) << "deleted twice";
}

void Session::CaptureAPicture() {
  EXPECT_TRUE(camera_.CaptureImage(true));
  const std::map<std::string, std::string> now = Tree::ReadBack(scratch_.Path());
  ASSERT_EQ(now.size(), tree_.files.size() + 1);
  for (const auto& [path, content] : now) {
    if (Content(path) != nullptr) continue;
    EXPECT_EQ(content.substr(0, 4), "\xFF\xD8\xFF\xFE");
    // "DCIM/NNNsuffix/IMG_NNNN.JPG"
    const std::size_t slash = path.rfind('/');
    const PictureName picture{std::stoi(path.substr(5, 3)), path.substr(8, slash - 8), "IMG_",
                              std::stoi(path.substr(slash + 5, 4))};
    // The number of a picture that was deleted may be given again.
    const auto same = [&](const PictureName& known) { return known.File("") == picture.File(""); };
    if (std::none_of(tree_.pictures.begin(), tree_.pictures.end(), same)) tree_.pictures.push_back(picture);
    tree_.Put(path, content);
    return;
  }
}

void Session::ListADirectory() {
  const std::string directory = AnyDirectory();
  std::vector<std::pair<std::string, int>> expected{{".", 0}, {"..", 0}};
  if (directory.empty()) expected.emplace_back("KELVA", 0);
  for (const auto& [name, size] : tree_.Children(directory)) {
    expected.emplace_back(name, static_cast<int>(size.value_or(0)));
  }
  std::vector<std::pair<std::string, int>> got;
  for (const CameraDirent& entry : camera_.ReadDir(OnCamera(directory).c_str())) {
    got.emplace_back(entry.name, entry.size);
    const bool isDirectory = (entry.attributes & 0x10) != 0;
    const bool expectedDirectory =
        entry.name == "." || entry.name == ".." ||
        tree_.directories.count((directory.empty() ? "" : directory + "/") + entry.name) != 0;
    EXPECT_EQ(isDirectory, expectedDirectory) << entry.name;
  }
  EXPECT_EQ(got, expected);
  EXPECT_TRUE(camera_.ReadDir(R"(I:\no such directory)").empty());
}

void Session::WalkADirectory() {
  const std::string directory = AnyDirectory();
  if (directory.empty()) return;
  std::vector<std::pair<std::string, long long>> expected;
  Walk(directory, expected);
  std::vector<std::pair<std::string, long long>> got;
  camera_.TraverseDir(OnCamera(directory).c_str(), got);
  EXPECT_EQ(got, expected);
}

}  // namespace tests::random
