#include "apps/doctor/linux/Rules.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

#include "base/testing/ScratchFolder.h"

namespace apps::doctor {
namespace {

namespace fs = std::filesystem;

class RulesTest : public testing::Test {
 protected:
  std::string Install(const std::string& folder) {
    fs::create_directories(root_ + folder);
    std::ofstream(root_ + folder + "/70-kelva.rules") << "# rules\n";
    return root_ + folder + "/70-kelva.rules";
  }

  const base::ScratchFolder scratch_;
  const std::string root_ = scratch_.Path();
};

TEST_F(RulesTest, WithoutTheFileThereAreNone) {
  EXPECT_EQ(InstalledRules(root_), "");
}

TEST_F(RulesTest, AreFoundInEveryFolderThatUdevReads) {
  for (const char* folder : {"/lib/udev/rules.d", "/usr/lib/udev/rules.d", "/usr/local/lib/udev/rules.d",
                             "/run/udev/rules.d", "/etc/udev/rules.d"}) {
    const std::string file = Install(folder);
    EXPECT_EQ(InstalledRules(root_), file);  // each of these goes before those above
  }
}

}  // namespace
}  // namespace apps::doctor
