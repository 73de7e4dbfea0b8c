#include "darwin/registry/NotificationPort.h"

#include <poll.h>

#include <csignal>

#include "darwin/registry/testing/RegistryFixture.h"

namespace darwin {
namespace {

/// What the source of these tests wants a run loop to wait for; it outlives the source.
struct Wish {
  int descriptor = -1;
  int timeoutMs = -1;
};

class WishfulSource final : public RegistrySource {
 public:
  explicit WishfulSource(const Wish& wish) : wish_(wish) {}
  void Start(Registry&) override {}
  int Descriptor() const override { return wish_.descriptor; }
  int TimeoutMs() const override { return wish_.timeoutMs; }
  void Dispatch(Registry&) override {}

 private:
  const Wish& wish_;
};

/// A port that no run loop has.
class Port {
 public:
  Port(const Port&) = delete;
  Port& operator=(const Port&) = delete;
  Port() = default;
  ~Port() { IONotificationPortDestroy(port_); }

  cf::RunLoopSource& Source() const { return cf::FromSourceRef(IONotificationPortGetRunLoopSource(port_)); }
  std::vector<int> Descriptors() const {
    std::vector<int> descriptors;
    Source().AddDescriptors(descriptors);
    return descriptors;
  }
  bool IsNudged() const {
    pollfd own{Descriptors().front(), POLLIN, 0};
    return ::poll(&own, 1, 0) == 1;
  }

 private:
  const IONotificationPortRef port_ = IONotificationPortCreate(kIOMainPortDefault);
};

class NotificationPorts : public RegistryFixture {
 protected:
  void SetUp() override { TheRegistry().SetSource(std::make_unique<WishfulSource>(wish_)); }
  static void Look() { EXPECT_EQ(Count(IOServiceMatching("Camera")), 0u); }

  Wish wish_;
};

TEST_F(NotificationPorts, WaitForTheSourcesDescriptorAlsoWhenItIsZero) {
  const Port port;
  Look();
  EXPECT_EQ(port.Descriptors().size(), 1u) << "its own alone";
  wish_.descriptor = 0;
  EXPECT_EQ(port.Descriptors().back(), 0);
}

TEST_F(NotificationPorts, AreToldWhenTheSourceWantsAMomentSinceALookElsewhere) {
  for (const int moment : {0, 1000}) {
    wish_.timeoutMs = -1;
    const Port port;
    Look();
    port.Source().Perform();
    Look();
    ASSERT_FALSE(port.IsNudged());
    wish_.timeoutMs = moment;
    Look();
    EXPECT_TRUE(port.IsNudged()) << moment;
  }
}

TEST_F(NotificationPorts, AreToldWhenTheSourceHasAnotherDescriptorSinceALookElsewhere) {
  const Port first;
  const Port second;
  Look();
  for (const Port* port : {&first, &second}) port->Source().Perform();
  ASSERT_FALSE(first.IsNudged());
  wish_.descriptor = 0;
  Look();
  EXPECT_TRUE(first.IsNudged());
  EXPECT_TRUE(second.IsNudged());
}

TEST(NotificationPortsDeathTest, ANullPortStopsTheProcess) {
  EXPECT_EXIT(IONotificationPortGetRunLoopSource(nullptr), ::testing::KilledBySignal(SIGABRT),
              "null notification port");
}

}  // namespace
}  // namespace darwin
