#include "bus/BusClient.h"

#include <gmock/gmock.h>
#include <poll.h>

#include "bus/BusConnection.h"
#include "darwin/registry/Accounting.h"
#include "vcam/server/testing/TestServer.h"

namespace bus {
namespace {

class BusClientTest : public testing::Test {
 protected:
  void Plug(const std::string& serial) {
    control_.Request(Kind::kPlug, Encode(PlugRequest{serial, server_.Scratch().Path().string(), "", "", 3}));
  }
  static std::size_t Services() { return darwin::AccountForRegistry().services; }
  void ExpectReadable() const {
    pollfd readable{source_->Descriptor(), POLLIN, 0};
    EXPECT_EQ(::poll(&readable, 1, 10'000), 1);
  }

  vcam::server::test::TestServer server_;
  BusConnection control_{server_.Path()};
  std::unique_ptr<darwin::RegistrySource> source_ = ConnectBus(server_.Path());
  darwin::Registry& registry_ = darwin::Registry::Shared();
  const std::size_t before_ = darwin::AccountForRegistry().entries;
  const std::size_t servicesBefore_ = Services();
};

TEST_F(BusClientTest, PublishesWhatIsPresentAndFollowsWhatChanges) {
  Plug("A");
  source_->Start(registry_);
  const std::size_t perCamera = Services() - servicesBefore_;
  EXPECT_GT(perCamera, 0U);
  Plug("B");
  ExpectReadable();
  source_->Dispatch(registry_);
  EXPECT_EQ(Services(), servicesBefore_ + 2 * perCamera);
  for (const char* serial : {"A", "B"}) control_.Request(Kind::kUnplug, EncodeText(serial));
  ExpectReadable();
  source_->Dispatch(registry_);
  EXPECT_EQ(darwin::AccountForRegistry().entries, before_);
}

TEST_F(BusClientTest, HasNothingToDoWhenNothingHappens) {
  source_->Start(registry_);
  pollfd readable{source_->Descriptor(), POLLIN, 0};
  EXPECT_EQ(::poll(&readable, 1, 0), 0);
  EXPECT_EQ(source_->TimeoutMs(), -1);
  source_->Dispatch(registry_);
  EXPECT_EQ(darwin::AccountForRegistry().entries, before_);
}

TEST_F(BusClientTest, UnplugsEveryCameraWhenTheBusEnds) {
  for (const char* serial : {"A", "B"}) Plug(serial);
  source_->Start(registry_);
  server_.Stop();
  ExpectReadable();
  source_->Dispatch(registry_);
  EXPECT_EQ(darwin::AccountForRegistry().entries, before_);
  EXPECT_EQ(source_->Descriptor(), -1) << "nothing to wait for any more";
}

TEST(BusClient, SaysThatNobodyServesThePath) {
  EXPECT_THROW(ConnectBus("/nonexistent/bus"), std::runtime_error);
}

}  // namespace
}  // namespace bus
