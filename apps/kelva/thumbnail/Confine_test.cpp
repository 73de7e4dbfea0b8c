#include "apps/kelva/thumbnail/Confine.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "apps/kelva/thumbnail/Drawing.h"
#include "apps/kelva/thumbnail/testing/TinyJpeg.h"

namespace apps {
namespace {

/// Ends with 0 when a confined process could do the work.
void DoConfined(const std::function<bool()>& work) {
  if (!Confine()) ::_exit(2);
  ::_exit(work() ? 0 : 1);
}

TEST(ConfineTest, AConfinedProcessDrawsPictures) {
  const std::string picture = TinyJpeg::File(100, std::vector<int>(5000, 90), TinyJpeg::ExifPart(6));
  const std::string damaged = picture.substr(0, picture.size() / 2);
  EXPECT_EXIT(DoConfined([&] {
                return std::get<Drawing>(Draw(picture)).time.has_value() &&
                       !std::get<Drawing>(Draw(damaged)).complaint.empty() &&
                       !std::get<std::string>(Draw(std::string("no picture"))).empty();
              }),
              ::testing::ExitedWithCode(0), "");
}

TEST(ConfineTest, AConfinedProcessReachesNothingElse) {
  const std::vector<std::function<void()>> deeds = {
      [] { ::open("/etc/passwd", O_RDONLY); },
      [] { ::socket(AF_INET, SOCK_STREAM, 0); },
      [] { ::fork(); },
      [] { ::execl("/bin/true", "true", nullptr); },
      [] { ::unlink("/nonexistent"); },
      [] { ::kill(1, 0); },
      [] { ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0); }};
  for (const auto& deed : deeds) {
    EXPECT_EXIT(DoConfined([&] {
                  deed();
                  return true;
                }),
                ::testing::KilledBySignal(SIGSYS), "");
  }
}

TEST(ConfineTest, AConfinedProcessHasBoundsOfMemory) {
  EXPECT_EXIT(DoConfined([] {
                return ::mmap(nullptr, std::size_t{2} << 30, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) ==
                       MAP_FAILED;
              }),
              ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace apps
