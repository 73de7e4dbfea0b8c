#include "apps/commandline/Aborts.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "apps/commandline/Scratch.h"
#include "base/FileDescriptor.h"
#include "base/testing/ScratchFolder.h"

namespace apps {
namespace {

TEST(AbortsDeathTest, AnAbortRemovesTheFileAndEndsWithOne) {
  const base::ScratchFolder scratch;
  const std::string folder = scratch.Path();
  std::ofstream(folder + "/part") << "half";
  EXPECT_EXIT(
      {
        CatchAborts("kelva: The camera broke a rule.\n", "", -1);
        const base::FileDescriptor dir(::open(folder.c_str(), O_RDONLY | O_DIRECTORY));
        const ScratchRecord record(dir.Get(), "part");
        std::abort();
      },
      testing::ExitedWithCode(1), "kelva: The camera broke a rule.");
  EXPECT_FALSE(std::filesystem::exists(folder + "/part"));
}

}  // namespace
}  // namespace apps
