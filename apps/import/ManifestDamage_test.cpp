#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "apps/import/testing/ManifestTest.h"

namespace apps {
namespace {

using testing::HasSubstr;

/// How a list is damaged: a change of its bytes.
using Damage = std::function<void(std::string& bytes)>;

/// A list of several pages.
class ManifestDamageTest : public ManifestTest {
 protected:
  static constexpr std::size_t kPage = 4096;

  ManifestDamageTest() {
    std::vector<ManifestRow> rows;
    for (int i = 0; i < 300; ++i) {
      rows.push_back({{"K1", std::to_string(1000 + i), 1, kSha1}, "100ABCDE/IMG.JPG", kSha1, 3, false, false});
    }
    Manifest(*folder_, true).Record(rows);
    whole_ = Bytes();
  }
  std::string Bytes() const {
    std::ifstream file(path_ / Manifest::kName, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  /// Opens the damaged list, for a run and for a look. Neither changes it.
  void ExpectRefused(const Damage& damage, const std::string& what) {
    std::string bytes = whole_;
    damage(bytes);
    std::ofstream(path_ / Manifest::kName, std::ios::binary | std::ios::trunc) << bytes;
    for (const bool make : {true, false}) {
      try {
        Manifest(*folder_, make, std::chrono::milliseconds(1));
        ADD_FAILURE() << what << ": opened";
      } catch (const Failure& failure) {
        EXPECT_EQ(failure.Code(), ExitCode::kFailed);
        EXPECT_THAT(failure.what(),
                    HasSubstr("move it away, and files that are here are recognised by their content."));
      }
      EXPECT_TRUE(Bytes() == bytes) << what;
    }
  }

  std::string whole_;
};

TEST_F(ManifestDamageTest, AListThatIsCutOffAnywhereIsRefusedAndLeftAsItIs) {
  ASSERT_GT(whole_.size(), 10 * kPage);
  // An empty file is one that a killed run had just begun.
  for (std::size_t page = 0; page * kPage < whole_.size(); ++page) {
    for (const std::size_t more : {std::size_t{0}, std::size_t{2}, std::size_t{200}, kPage / 2, kPage - 1}) {
      const std::size_t size = page * kPage + more;
      if (size == 0) continue;
      ExpectRefused([&](std::string& bytes) { bytes.resize(size); }, "cut off at " + std::to_string(size));
    }
  }
}

TEST_F(ManifestDamageTest, APageOfZerosOrWithAnotherHeadIsRefused) {
  for (std::size_t page = 1; page * kPage < whole_.size(); ++page) {
    const std::string number = std::to_string(page);
    ExpectRefused([&](std::string& bytes) { bytes.replace(page * kPage, kPage, kPage, '\0'); }, "zeros in " + number);
    ExpectRefused([&](std::string& bytes) { bytes[page * kPage] ^= 0x55; }, "another kind of page in " + number);
    ExpectRefused([&](std::string& bytes) { bytes[page * kPage + 3] ^= 0x55; }, "another count in " + number);
    ExpectRefused([&](std::string& bytes) { bytes[page * kPage + 5] ^= 0x55; }, "another start in " + number);
  }
}

}  // namespace
}  // namespace apps
