#include "apps/desktop/worker/Wishes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace apps {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(WishesTest, TheLastCommandOfEachNameIsKept) {
  Wishes wishes;
  EXPECT_THAT(wishes.Kept(), IsEmpty());
  wishes.Keep({"thumbs", "1", "2"});
  wishes.Keep({"target", "/my pictures", "", ""});
  wishes.Keep({"thumbs", "3"});
  EXPECT_THAT(wishes.Kept(), ElementsAre(ElementsAre("target", "/my pictures", "", ""), ElementsAre("thumbs", "3")));
}

TEST(WishesTest, TheNextProcessHasWhatTheLastOneKept) {
  Wishes wishes;
  const pid_t child = ::fork();
  if (child == 0) {
    wishes.Keep({"thumbs", "7"});
    ::_exit(0);
  }
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_THAT(wishes.Kept(), ElementsAre(ElementsAre("thumbs", "7")));
}

}  // namespace
}  // namespace apps
