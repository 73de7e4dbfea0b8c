#include "apps/commandline/ProgramBeside.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "base/testing/ScratchFolder.h"

namespace apps {
namespace {

namespace fs = std::filesystem;

TEST(ProgramBesideTest, AProgramLiesBesideTheOtherOneOrWhereItIsInstalled) {
  const base::ScratchFolder scratch;
  const std::string program = scratch.Path() / "here" / "kelva";
  fs::create_directory(scratch.Path() / "here");
  EXPECT_TRUE(ProgramBeside(program, "other").ends_with("libexec/kelva/other"));
  const auto put = [&](const std::string& folder) {
    const fs::path path = scratch.Path() / folder / "other";
    fs::create_directories(path.parent_path());
    std::ofstream(path) << "";
    ::chmod(path.c_str(), 0755);
  };
  put("bin");
  EXPECT_TRUE(ProgramBeside(program, "other").ends_with("here/../bin/other"));
  put("here");
  EXPECT_TRUE(ProgramBeside(program, "other").ends_with("here/other"));
  fs::create_directories(scratch.Path() / "bin/Kelva.app/Contents/MacOS");
  const std::string inBundle = scratch.Path() / "bin/Kelva.app/Contents/MacOS/Kelva";
  EXPECT_TRUE(ProgramBeside(inBundle, "other").ends_with("bin/Kelva.app/Contents/MacOS/../../../other"));
}

}  // namespace
}  // namespace apps
