#include "vcam/usbip/CablePuller.h"

#include <gtest/gtest.h>
#include <sys/eventfd.h>

#include <latch>
#include <stdexcept>

namespace vcam::usbip {
namespace {

class CablePullerTest : public ::testing::Test {
 protected:
  const base::FileDescriptor stop_{::eventfd(0, EFD_CLOEXEC)};
};

TEST_F(CablePullerTest, PullsWhenTheDescriptorBecomesReadable) {
  std::latch pulled(1);
  const CablePuller puller(stop_.Get(), [&] { pulled.count_down(); });
  ::eventfd_write(stop_.Get(), 1);
  pulled.wait();
}

TEST_F(CablePullerTest, EndsAtOnceWhenTheSessionHasEnded) {
  bool pulled = false;
  {
    const CablePuller puller(stop_.Get(), [&] { pulled = true; });
  }
  EXPECT_FALSE(pulled);
}

TEST_F(CablePullerTest, EndsWhenTheSessionThrows) {
  const auto session = [this] {
    const CablePuller puller(stop_.Get(), [] {});
    throw std::runtime_error("the kernel speaks another language");
  };
  EXPECT_THROW(session(), std::runtime_error);
}

}  // namespace
}  // namespace vcam::usbip
