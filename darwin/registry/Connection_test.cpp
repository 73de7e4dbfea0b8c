// A connection as the driver's end sees it: how long a client lives, and what becomes of what it throws.

#include "darwin/registry/Connection.h"

#include <functional>
#include <new>
#include <stdexcept>

#include "darwin/registry/testing/RegistryFixture.h"

namespace darwin {
namespace {

/// A client that does what a test says and counts itself.
class Client final : public UserClient {
 public:
  explicit Client(int& living, std::function<int()> onCall = {}) : living_(living), onCall_(std::move(onCall)) {
    ++living_;
  }
  ~Client() override { --living_; }
  int CallScalar(std::uint32_t) override { return onCall_ ? onCall_() : kIOReturnSuccess; }
  int CallStruct(std::uint32_t, const void*, std::size_t, void*, std::size_t*) override { return CallScalar(0); }

 private:
  int& living_;
  const std::function<int()> onCall_;
};

class Connections : public RegistryFixture {
 protected:
  void TearDown() override {
    TheRegistry().Terminate(camera_);
    EXPECT_EQ(living_, 0);
    RegistryFixture::TearDown();
  }

  io_connect_t Open(std::function<int()> onCall = {}) {
    camera_ = Publish({{"Camera"}, {}, [this, onCall](int&) { return std::make_unique<Client>(living_, onCall); }});
    const io_service_t service = First("Camera");
    io_connect_t connection = 0;
    EXPECT_EQ(IOServiceOpen(service, mach_task_self(), 0, &connection), kIOReturnSuccess);
    IOObjectRelease(service);
    return connection;
  }

  kern_return_t OpenWith(UserClientFactory factory, io_connect_t& connection) {
    camera_ = Publish({{"Camera"}, {}, std::move(factory)});
    const io_service_t service = First("Camera");
    const kern_return_t result = IOServiceOpen(service, mach_task_self(), 0, &connection);
    IOObjectRelease(service);
    return result;
  }

  static kern_return_t Call(io_connect_t connection) {
    return IOConnectCallScalarMethod(connection, 0, nullptr, 0, nullptr, nullptr);
  }

  EntryId camera_ = 0;
  int living_ = 0;
};

TEST_F(Connections, ClosingEndsTheClient) {
  const io_connect_t connection = Open();
  EXPECT_EQ(living_, 1);
  IOServiceClose(connection);
  EXPECT_EQ(living_, 0);
}

TEST_F(Connections, GivingBackTheLastReferenceEndsTheClient) {
  const io_connect_t connection = Open();
  IOObjectRelease(connection);
  EXPECT_EQ(living_, 0);
}

TEST_F(Connections, TerminatingTheServiceEndsTheClient) {
  const io_connect_t connection = Open();
  TheRegistry().Terminate(camera_);
  EXPECT_EQ(living_, 0);
  IOServiceClose(connection);
}

TEST_F(Connections, AClientLivesUntilItsCallInProgressEnds) {
  int livingDuringCall = 0;
  const io_connect_t connection = Open([&] {
    TheRegistry().Terminate(camera_);
    livingDuringCall = living_;
    return kIOReturnNoDevice;
  });
  EXPECT_EQ(Call(connection), kIOReturnNoDevice);
  EXPECT_EQ(livingDuringCall, 1);
  EXPECT_EQ(living_, 0);
  IOServiceClose(connection);
}

TEST_F(Connections, AClientMayUseTheRegistryDuringACall) {
  const io_connect_t connection = Open([] {
    EXPECT_EQ(Count(IOServiceMatching("Camera")), 1u);
    return kIOReturnSuccess;
  });
  EXPECT_EQ(Call(connection), kIOReturnSuccess);
  IOServiceClose(connection);
}

TEST_F(Connections, WhatAClientThrowsIsAReturnCode) {
  bool memory = false;
  const io_connect_t connection = Open([&memory]() -> int {
    if (memory) throw std::bad_alloc();
    throw std::runtime_error("lost");
  });
  EXPECT_EQ(Call(connection), kIOReturnError);
  memory = true;
  EXPECT_EQ(Call(connection), kIOReturnNoMemory);
  IOServiceClose(connection);
}

TEST_F(Connections, WhatAFactoryThrowsIsAReturnCode) {
  io_connect_t connection = 77;
  EXPECT_EQ(OpenWith([](int&) -> std::unique_ptr<UserClient> { throw std::runtime_error("lost"); }, connection),
            kIOReturnError);
  EXPECT_EQ(connection, 0u);
}

TEST_F(Connections, ARefusalWithoutACodeIsUnsupported) {
  io_connect_t connection = 77;
  EXPECT_EQ(OpenWith([](int&) { return nullptr; }, connection), kIOReturnUnsupported);
  EXPECT_EQ(connection, 0u);
}

TEST_F(Connections, ASuccessWithoutAClientIsUnsupported) {
  io_connect_t connection = 77;
  const UserClientFactory factory = [](int& error) {
    error = kIOReturnSuccess;
    return nullptr;
  };
  EXPECT_EQ(OpenWith(factory, connection), kIOReturnUnsupported);
  EXPECT_EQ(connection, 0u);
}

TEST_F(Connections, AServiceThatGoesWhileItOpensIsNoDevice) {
  io_connect_t connection = 77;
  const UserClientFactory factory = [this](int&) {
    TheRegistry().Terminate(camera_);
    return std::make_unique<Client>(living_);
  };
  EXPECT_EQ(OpenWith(factory, connection), kIOReturnNoDevice);
  EXPECT_EQ(connection, 0u);
}

TEST_F(Connections, ADriverIsNotAskedForAServiceThatHasGone) {
  int asked = 0;
  camera_ = Publish({{"Camera"}, {}, [&asked](int&) -> std::unique_ptr<UserClient> {
                       ++asked;
                       return nullptr;
                     }});
  io_iterator_t iterator = 0;
  IOServiceGetMatchingServices(kIOMainPortDefault, IOServiceMatching("Camera"), &iterator);
  TheRegistry().Terminate(camera_);
  const io_service_t service = IOIteratorNext(iterator);
  io_connect_t connection = 77;
  EXPECT_EQ(IOServiceOpen(service, mach_task_self(), 0, &connection), kIOReturnNoDevice);
  EXPECT_EQ(connection, 0u);
  EXPECT_EQ(asked, 0);
  IOObjectRelease(service);
  IOObjectRelease(iterator);
}

TEST_F(Connections, MoreThanAMessageHoldsIsABadArgument) {
  const io_connect_t connection = Open();
  const std::vector<char> large(4097);
  std::size_t size = large.size();
  uint32_t scalars = 17;
  EXPECT_EQ(IOConnectCallStructMethod(connection, 0, large.data(), large.size(), nullptr, nullptr),
            kIOReturnBadArgument);
  EXPECT_EQ(IOConnectCallStructMethod(connection, 0, nullptr, 0, nullptr, &size), kIOReturnBadArgument);
  EXPECT_EQ(IOConnectCallScalarMethod(connection, 0, nullptr, 0, nullptr, &scalars), kIOReturnBadArgument);
  IOServiceClose(connection);
}

}  // namespace
}  // namespace darwin
