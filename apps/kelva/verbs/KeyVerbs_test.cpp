#include <gmock/gmock.h>

#include "apps/kelva/verbs/testing/VerbTest.h"

namespace apps {
namespace {

using testing::HasSubstr;

using KeyVerbsTest = VerbTest;

TEST_F(KeyVerbsTest, AFileIsFetchedAndDeletedByItsKey) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "abc");
  const char* key = "a9993e364706816aba3e25717850c26c9cd0d89d";
  const std::string into = folder.string();
  const Ran ran = Run({"batch", "get", key, "--into", into.c_str()});
  EXPECT_EQ(ran.code, ExitCode::kDone) << ran.err;
  EXPECT_EQ(Text(folder / key), "abc");
  const std::string made = (folder / "made/here").string();
  EXPECT_EQ(Run({"batch", "get", key, "-d", made.c_str()}).code, ExitCode::kDone);
  EXPECT_EQ(Text(folder / "made/here" / key), "abc");
  EXPECT_EQ(Run({"batch", "rm", key}).code, ExitCode::kDone);
  EXPECT_FALSE(Has("DCIM/100ABCDE/IMG_0001.JPG"));
}

TEST_F(KeyVerbsTest, AKeyThatTheCameraDoesNotHaveIsNotDeletedSilently) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "abc");
  const char* key = "a9993e364706816aba3e25717850c26c9cd0d89d";
  const char* unknown = "0000000000000000000000000000000000000000";
  const Ran none = Run({"batch", "rm", unknown, "--json"});
  EXPECT_EQ(none.code, ExitCode::kFailed);
  EXPECT_THAT(none.err, HasSubstr("no file with the key 0000"));
  EXPECT_THAT(none.out, HasSubstr("\"keys\":0"));
  const Ran some = Run({"batch", "rm", unknown, key, "--json"});
  EXPECT_EQ(some.code, ExitCode::kPartial);
  EXPECT_THAT(some.out, HasSubstr("\"keys\":1,\"files\":[{\"path\":\"0000"));
  EXPECT_THAT(some.out, HasSubstr("{\"key\":\"a9993e364706816aba3e25717850c26c9cd0d89d\"}],\"failed\":1"));
  EXPECT_FALSE(Has("DCIM/100ABCDE/IMG_0001.JPG"));
}

TEST_F(KeyVerbsTest, ADryRunShowsWhichKeysTheCameraHasAndDeletesNothing) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "abc");
  const char* key = "a9993e364706816aba3e25717850c26c9cd0d89d";
  const Ran dry = Run({"batch", "rm", "-n", key, "0000000000000000000000000000000000000000"});
  EXPECT_EQ(dry.code, ExitCode::kPartial);
  EXPECT_EQ(dry.out, std::string(key) + "\n");
  EXPECT_THAT(dry.err, HasSubstr("kelva: 1 file would be deleted; nothing was.\n"));
  EXPECT_THAT(Run({"batch", "rm", "-n", key, "--json"}).out, HasSubstr(R"("keys":1,"dry_run":true,"files":[{"key":)"));
  EXPECT_TRUE(Has("DCIM/100ABCDE/IMG_0001.JPG"));
}

TEST_F(KeyVerbsTest, APictureWithoutRawDataIsNotARefusal) {
  Put("DCIM/100ABCDE/IMG_0001.JPG", "abc");
  const Ran ran = Run({"raw", "a9993e364706816aba3e25717850c26c9cd0d89d"});
  EXPECT_EQ(ran.code, ExitCode::kFailed);
  EXPECT_EQ(ran.err,
            "kelva: The camera has no compressed raw data for the key a9993e364706816aba3e25717850c26c9cd0d89d.\n");
}

TEST_F(KeyVerbsTest, WhatIsNoKeyIsAUsageError) {
  EXPECT_EQ(Run({"batch", "get", "abc"}).code, ExitCode::kUsage);
  EXPECT_EQ(Run({"raw", "abc"}).code, ExitCode::kUsage);
}

}  // namespace
}  // namespace apps
