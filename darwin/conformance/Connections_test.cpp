// User-client connections: opening, calling, closing, and every way in which they fail.

#include <cstdint>
#include <cstring>

#include "darwin/conformance/RegistryTest.h"

namespace conformance {
namespace {

class Connections : public RegistryTest {
 protected:
  /// A connection to the only camera; closed by the test.
  static io_connect_t Open() {
    const Object service = FindCamera();
    io_connect_t connection = 0;
    EXPECT_EQ(IOServiceOpen(service.Number(), mach_task_self(), 0, &connection), kIOReturnSuccess);
    EXPECT_NE(connection, 0u);
    return connection;
  }

  static kern_return_t CallScalar(io_connect_t connection, std::uint32_t selector) {
    return IOConnectCallScalarMethod(connection, selector, nullptr, 0, nullptr, nullptr);
  }
};

/// What another driver may answer otherwise.
class ConnectionsDriverChooses : public Connections {};

TEST_F(Connections, AnOpenedConnectionCarriesCallsUntilItIsClosed) {
  Plug();
  const io_connect_t connection = Open();
  EXPECT_EQ(CallScalar(connection, kAccept), kIOReturnSuccess);
  EXPECT_EQ(IOServiceClose(connection), kIOReturnSuccess);
  EXPECT_EQ(CallScalar(connection, kAccept), MACH_SEND_INVALID_DEST);
}

TEST_F(Connections, EachOpenMakesAConnectionOfItsOwn) {
  Plug();
  const io_connect_t first = Open();
  const io_connect_t second = Open();
  EXPECT_NE(first, second);
  IOServiceClose(first);
  EXPECT_EQ(CallScalar(second, kAccept), kIOReturnSuccess);
  IOServiceClose(second);
}

TEST_F(Connections, ClosingTwiceOrNothingFails) {
  Plug();
  const io_connect_t connection = Open();
  EXPECT_EQ(IOServiceClose(connection), kIOReturnSuccess);
  EXPECT_EQ(IOServiceClose(connection), MACH_SEND_INVALID_DEST);
  EXPECT_EQ(IOServiceClose(0), MACH_SEND_INVALID_DEST);
}

TEST_F(Connections, ClosingEndsAConnectionThatIsReferredToTwice) {
  Plug();
  const io_connect_t connection = Open();
  IOObjectRetain(connection);
  EXPECT_EQ(IOServiceClose(connection), kIOReturnSuccess);
  EXPECT_EQ(CallScalar(connection, kAccept), MACH_SEND_INVALID_DEST);
  EXPECT_EQ(IOObjectRelease(connection), KERN_SUCCESS);
}

TEST_F(Connections, AConnectionOutlivesTheHandleOfItsService) {
  Plug();
  const io_connect_t connection = Open();  // the service's handle is given back already
  EXPECT_EQ(CallScalar(connection, kAccept), kIOReturnSuccess);
  IOServiceClose(connection);
}

TEST_F(Connections, OpeningADeadHandleWritesNothing) {
  io_connect_t connection = kUntouched;
  EXPECT_EQ(IOServiceOpen(0, mach_task_self(), 0, &connection), MACH_SEND_INVALID_DEST);
  EXPECT_EQ(connection, kUntouched);
}

TEST_F(Connections, AParentWithoutUserClientIsUnsupported) {
  Plug();
  const Object service = FindCamera();
  const Object inquiry = ParentOf(service);
  io_connect_t connection = kUntouched;
  EXPECT_EQ(IOServiceOpen(inquiry.Number(), mach_task_self(), 0, &connection), kIOReturnUnsupported);
  EXPECT_EQ(connection, 0u);
}

TEST_F(ConnectionsDriverChooses, ScalarsThatAMethodDoesNotTakeAreABadArgument) {
  Plug();
  const io_connect_t connection = Open();
  const std::uint64_t input[1] = {7};
  std::uint64_t output[1] = {7};
  std::uint32_t count = 1;
  EXPECT_EQ(IOConnectCallScalarMethod(connection, kAccept, input, 1, nullptr, nullptr), kIOReturnBadArgument);
  EXPECT_EQ(IOConnectCallScalarMethod(connection, kAccept, nullptr, 0, output, &count), kIOReturnBadArgument);
  EXPECT_EQ(output[0], 7u);
  EXPECT_EQ(count, 1u);
  IOServiceClose(connection);
}

TEST_F(Connections, ARefusingDriverAnswersWithItsOwnCodeAndNoConnection) {
  Plug({.refusal = kIOReturnExclusiveAccess});
  const Object service = FindCamera();
  io_connect_t connection = kUntouched;
  EXPECT_EQ(IOServiceOpen(service.Number(), mach_task_self(), 0, &connection), kIOReturnExclusiveAccess);
  EXPECT_EQ(connection, 0u);
}

TEST_F(Connections, AServiceWithoutUserClientIsUnsupported) {
  Plug({.revision = "Q42", .peripheralType = 5});
  const Object disc = FindOne(IOServiceMatching("IOCompactDiscServices"));
  io_connect_t connection = kUntouched;
  EXPECT_EQ(IOServiceOpen(disc.Number(), mach_task_self(), 0, &connection), kIOReturnUnsupported);
  EXPECT_EQ(connection, 0u);
}

TEST_F(Connections, WhatIsNoServiceCannotBeOpened) {
  Plug();
  io_iterator_t number = 0;
  ASSERT_EQ(IOServiceGetMatchingServices(MACH_PORT_NULL, MatchingCameras(), &number), kIOReturnSuccess);
  const Object iterator(number);
  io_connect_t connection = kUntouched;
  EXPECT_EQ(IOServiceOpen(iterator.Number(), mach_task_self(), 0, &connection), kIOReturnBadArgument);
  EXPECT_EQ(connection, kUntouched);
}

TEST_F(Connections, AnotherTaskCannotBeOpenedFor) {
  Plug();
  const Object service = FindCamera();
  io_connect_t connection = kUntouched;
  EXPECT_EQ(IOServiceOpen(service.Number(), 0, 0, &connection), kIOReturnBadArgument);
  EXPECT_EQ(IOServiceOpen(service.Number(), mach_task_self() + 1, 0, &connection), kIOReturnBadArgument);
  EXPECT_EQ(connection, kUntouched);
}

TEST_F(Connections, ACallOnNoConnectionWritesNothing) {
  char output[8] = "before";
  std::size_t size = sizeof output;
  std::uint32_t count = 3;
  EXPECT_EQ(IOConnectCallStructMethod(0, kReverse, "abc", 3, output, &size), MACH_SEND_INVALID_DEST);
  EXPECT_EQ(IOConnectCallScalarMethod(0, kAccept, nullptr, 0, nullptr, &count), MACH_SEND_INVALID_DEST);
  EXPECT_STREQ(output, "before");
  EXPECT_EQ(size, sizeof output);
  EXPECT_EQ(count, 3u);
}

TEST_F(Connections, AServiceIsNotAConnection) {
  Plug();
  const Object service = FindCamera();
  char output[8] = "before";
  std::size_t size = sizeof output;
  EXPECT_EQ(IOConnectCallStructMethod(service.Number(), kReverse, "abc", 3, output, &size), kIOReturnBadArgument);
  EXPECT_EQ(CallScalar(service.Number(), kAccept), kIOReturnBadArgument);
  EXPECT_STREQ(output, "before");
}

TEST_F(Connections, AMethodsOwnCodeIsTheCallsCode) {
  Plug();
  const io_connect_t connection = Open();
  EXPECT_EQ(CallScalar(connection, kRefuse), kIOReturnNotReady);
  IOServiceClose(connection);
}

TEST_F(Connections, AStructMethodTellsHowMuchItProduced) {
  Plug();
  const io_connect_t connection = Open();
  char output[9] = "........";
  std::size_t size = 8;
  EXPECT_EQ(IOConnectCallStructMethod(connection, kReverse, "abc", 3, output, &size), kIOReturnSuccess);
  EXPECT_EQ(size, 3u);
  EXPECT_STREQ(output, "cba.....");
  IOServiceClose(connection);
}

TEST_F(Connections, AFailedStructMethodLeavesTheOutputAlone) {
  Plug();
  const io_connect_t connection = Open();
  char output[8] = "before";
  std::size_t size = sizeof output;
  EXPECT_EQ(IOConnectCallStructMethod(connection, kScribble, nullptr, 0, output, &size), kIOReturnNotReady);
  EXPECT_STREQ(output, "before");
  EXPECT_EQ(size, sizeof output);
  IOServiceClose(connection);
}

TEST_F(Connections, NoMoreThanWasAskedForIsGivenBack) {
  Plug();
  const io_connect_t connection = Open();
  char output[9] = "........";
  std::size_t size = 4;
  EXPECT_EQ(IOConnectCallStructMethod(connection, kBoast, nullptr, 0, output, &size), kIOReturnSuccess);
  EXPECT_EQ(size, 4u);
  EXPECT_STREQ(output, "!!!!....");
  IOServiceClose(connection);
}

TEST_F(Connections, WithoutAnOutputSizeNothingIsAskedFor) {
  Plug();
  const io_connect_t connection = Open();
  EXPECT_EQ(IOConnectCallStructMethod(connection, kReverse, "abc", 3, nullptr, nullptr), kIOReturnSuccess);
  IOServiceClose(connection);
}

TEST_F(ConnectionsDriverChooses, AnUnknownSelectorIsUnsupported) {
  Plug();
  const io_connect_t connection = Open();
  EXPECT_EQ(IOConnectCallStructMethod(connection, 99, nullptr, 0, nullptr, nullptr), kIOReturnUnsupported);
  IOServiceClose(connection);
}

TEST_F(Connections, UnpluggingEndsTheConnectionAtOnceAndClosingDropsTheName) {
  const int camera = Plug();
  const io_connect_t connection = Open();
  Unplug(camera);
  EXPECT_EQ(CallScalar(connection, kAccept), MACH_SEND_INVALID_DEST);
  EXPECT_EQ(IOServiceClose(connection), MACH_SEND_INVALID_DEST);
}

}  // namespace
}  // namespace conformance
