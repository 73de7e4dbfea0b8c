#include <gmock/gmock.h>

#include "tests/random/Session.h"

// The steps about crash logs, calibration and files by key.

namespace tests::random {
namespace {

using Named = std::vector<std::pair<std::string, std::string>>;

Named NamesAndBytes(const std::vector<_Sha1obj>& objects) {
  Named named;
  for (const _Sha1obj& object : objects) {
    named.emplace_back(object.name, std::string(object.data.begin(), object.data.end()));
  }
  return named;
}

}  // namespace

void Session::ExpectBundle(const std::vector<_Sha1obj>& got, const std::string& folder, bool wholePaths,
                           std::size_t most) const {
  Named expected;
  std::size_t entries = 0;
  for (const auto& [name, size] : tree_.Children(folder)) {
    if (!size || entries++ == most) break;
    const std::string path = folder + "/" + name;
    if (*size != 0) expected.emplace_back(wholePaths ? OnCamera(path) : name, *Content(path));
  }
  EXPECT_EQ(NamesAndBytes(got), expected);
}

void Session::ReadCrashLogs() {
  const bool deleteThem = OnceIn(random_, 2);
  ExpectBundle(camera_.ReadCrashLogs(nullptr, nullptr, deleteThem, true), "CRASH", true, 1000);
  if (!deleteThem) return;
  for (const auto& [name, size] : tree_.Children("CRASH")) {
    if (size.value_or(0) != 0) tree_.files.erase("CRASH/" + name);
  }
}

void Session::ReadCalibration() {
  ExpectBundle(camera_.ReadCalibration(nullptr, nullptr, true), "CALIB", false, 31);
}

void Session::ReadABatch() {
  std::vector<std::string> keys;
  std::vector<std::string> qualifiers;
  Named expected;
  for (std::size_t count = Between(random_, 0, 5); count > 0; --count) {
    keys.push_back(AnyKey());
    qualifiers.push_back(OnceIn(random_, 3) ? "." + kExtensions[Between(random_, 0, 3)] : "");
    const std::string path = FirstWithKey(keys.back());
    const std::string* content = qualifiers.back().empty() ? Content(path) : Sibling(path, qualifiers.back().substr(1));
    if (content != nullptr && !content->empty()) expected.emplace_back(keys.back(), *content);
  }
  EXPECT_EQ(NamesAndBytes(camera_.ReadFilesBySha1(keys, qualifiers, nullptr, nullptr, true)), expected);
}

void Session::DeleteABatch() {
  std::vector<std::string> keys;
  for (std::size_t count = Between(random_, 0, 3); count > 0; --count) keys.push_back(AnyKey());
  EXPECT_TRUE(camera_.DeleteBatch(keys, true));
  std::erase_if(tree_.files, [&](const auto& file) {
    return file.first.rfind("DCIM/", 0) == 0 && std::find(keys.begin(), keys.end(), KeyOf(file.second)) != keys.end();
  });
}

void Session::ReadCompressedRaw() {
  const std::string key = AnyKey();
  const std::string* raw = Sibling(FirstWithKey(key), "RAW");
  Named expected;
  if (raw != nullptr) {
    const std::size_t half = (raw->size() + 1) / 2;
    for (const std::string& part : {raw->substr(0, half), raw->substr(half)}) {
      if (!part.empty()) expected.emplace_back(key, part);
    }
  }
  EXPECT_EQ(NamesAndBytes(camera_.ReadCompressedRaw(key, nullptr, nullptr, true)), expected);
}

}  // namespace tests::random
