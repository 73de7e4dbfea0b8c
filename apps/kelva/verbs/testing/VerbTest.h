#ifndef KELVA_APPS_KELVA_VERBS_TESTING_VERB_TEST_H_
#define KELVA_APPS_KELVA_VERBS_TESTING_VERB_TEST_H_

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "apps/commandline/ExitCode.h"
#include "base/testing/ScratchFolder.h"

namespace apps {

/// What a command line came to.
struct Ran {
  ExitCode code;
  std::string out;
  std::string err;
};

/// Runs command lines against one virtual camera, K1, in this process. Its drive is the folder `storage`.
class VerbTest : public testing::Test {
 protected:
  VerbTest();
  ~VerbTest() override;

  Ran Run(const std::vector<const char*>& arguments);
  void Put(const std::string& name, const std::string& text) const;
  std::string Text(const std::filesystem::path& path) const;
  bool Has(const std::string& name) const { return std::filesystem::exists(storage / name); }

  const base::ScratchFolder scratch;
  const std::filesystem::path folder = scratch.Path();      ///< for files of this computer
  const std::filesystem::path storage = folder / "camera";  ///< the camera's drive

 private:
  const base::ScratchFolder cache_;  // what the user's programs keep
  class Machine;
  std::unique_ptr<Machine> machine_;
};

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_TESTING_VERB_TEST_H_
