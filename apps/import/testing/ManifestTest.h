#ifndef KELVA_APPS_IMPORT_TESTING_MANIFEST_TEST_H_
#define KELVA_APPS_IMPORT_TESTING_MANIFEST_TEST_H_

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "apps/commandline/Failure.h"
#include "apps/import/Manifest.h"
#include "base/testing/ScratchFolder.h"

namespace apps {

/// A folder with a list of what was fetched into it.
class ManifestTest : public testing::Test {
 protected:
  std::string WhyNot(ExitCode code = ExitCode::kFailed) const {
    try {
      Manifest(*folder_, true, std::chrono::milliseconds(1));
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.Code(), code);
      return failure.what();
    }
    return "opened";
  }
  static ManifestRow Row(const std::string& serial, int type) {
    return {{serial, "00ff", type, "print"}, "100/IMG.JPG", kSha1, 5'000'000'000ULL, true, false};
  }
  static CutRow Cut(const std::string& serial) {
    return {Row(serial, 1).key, 5'000'000'000ULL, "100/.kelva-1.part", 7};
  }
  // What another program does to the list.
  std::unique_ptr<sqlite3, decltype(&sqlite3_close)> Elsewhere(const char* sql) const {
    sqlite3* database = nullptr;
    EXPECT_EQ(sqlite3_open((path_ / Manifest::kName).c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(database);
    return {database, sqlite3_close};
  }

  static constexpr char kSha1[] = "a9993e364706816aba3e25717850c26c9cd0d89d";
  const base::ScratchFolder scratch_;
  const std::filesystem::path path_ = scratch_.Path();
  std::optional<TargetFolder> folder_ = TargetFolder::Open(path_);
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_TESTING_MANIFEST_TEST_H_
