#include "darwin/registry/DefaultSource.h"

#include <cstdlib>

#include "darwin/registry/testing/RegistryFixture.h"

namespace darwin {
namespace {

int starts = 0;

class TheDefault final : public RegistrySource {
 public:
  void Start(Registry&) override { ++starts; }
  int Descriptor() const override { return -1; }
  void Dispatch(Registry&) override {}
};

}  // namespace

// The one of this program's build, in the place of darwin_no_default.
std::unique_ptr<RegistrySource> DefaultSource() {
  return std::make_unique<TheDefault>();
}

namespace {

/// Ends the process; its status says how often the default source was started.
void LookTwice() {
  for (int i = 0; i < 2; ++i) {
    io_iterator_t iterator = 0;
    IOServiceGetMatchingServices(kIOMainPortDefault, IOServiceMatching("Camera"), &iterator);
  }
  std::exit(starts);
}

// A process of its own, since this one has named sources before.
TEST(DefaultSourceDeathTest, IsTakenByTheFirstLookOfAProgramThatNamesNone) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(LookTwice(), ::testing::ExitedWithCode(1), "");
}

TEST(DefaultSourceDeathTest, IsNotTakenByAProgramThatNamesOne) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto nameNone = [] {
    Registry::Shared().SetSource(nullptr);
    LookTwice();
  };
  EXPECT_EXIT(nameNone(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace darwin
