#include "apps/camera/FilesByKey.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "apps/camera/testing/FakeCamera.h"

namespace apps {
namespace {

using testing::ElementsAre;

/// A camera that answers the selection of files by key with a text of the test's.
class KeyCamera final : public FakeCamera {
 public:
  bool Transfer(const _VscCdb& cdb, int, int& size, char* buffer, bool) override {
    switch (static_cast<unsigned char>(cdb.bytes[0])) {
      case 0xC2:
        asked += buffer;
        return selects;
      case 0xC4:
        size = static_cast<int>(bundle.copy(buffer, static_cast<std::size_t>(size)));
        return true;
      default:
        buffer[0] = announced;
        buffer[1] = buffer[2] = buffer[3] = 0;
        return true;
    }
  }
  bool selects = true;
  char announced = 0;
  std::string bundle;
  std::string asked;
};

TEST(FilesByKeyTest, AFileWithBytesIsThere) {
  KeyCamera camera;
  camera.bundle = std::string(
      "\3\0\0\0"
      "\0\0\0\0"
      "\0\1\0\0"
      "abc",
      15);
  camera.announced = 15;
  EXPECT_THAT(HasFiles(camera, {"k1", "k2", "k3"}), ElementsAre(true, false, true));
  EXPECT_EQ(camera.asked, "k1k2k3");
}

TEST(FilesByKeyTest, WithoutAWholeTableNothingIsThere) {
  KeyCamera camera;
  camera.bundle = std::string("\3\0\0\0\3\0\0", 7);
  camera.announced = 8;
  EXPECT_THAT(HasFiles(camera, {"k1", "k2"}), ElementsAre(false, false));
  camera.bundle += '\0';
  EXPECT_THAT(HasFiles(camera, {"k1", "k2"}), ElementsAre(true, true));
  camera.announced = 7;
  EXPECT_THAT(HasFiles(camera, {"k1", "k2"}), ElementsAre(false, false));
  camera.announced = 8;
  camera.selects = false;
  EXPECT_THAT(HasFiles(camera, {"k1", "k2"}), ElementsAre(false, false));
}

TEST(FilesByKeyTest, NoKeysAskNothing) {
  KeyCamera camera;
  EXPECT_TRUE(HasFiles(camera, {}).empty());
  EXPECT_EQ(camera.asked, "");
}

}  // namespace
}  // namespace apps
