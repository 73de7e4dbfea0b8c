// Connections to a service's user client.

#include <IOKit/IOKitLib.h>
#include <IOKit/IOMessage.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <new>
#include <utility>

#include "darwin/registry/Connection.h"
#include "darwin/registry/State.h"

namespace {

using darwin::Connection;
using darwin::Entry;
using darwin::KernelObject;
using darwin::SharedState;
using darwin::UserClient;

constexpr std::size_t kLargestInlineStruct = 4096;

/// The connection that a handle stands for, or why there is none. Under the registry's lock.
kern_return_t FindConnection(io_connect_t handle, std::shared_ptr<Connection>& connection) {
  const std::shared_ptr<KernelObject> object = SharedState().handles.Find(handle);
  if (object == nullptr) return MACH_SEND_INVALID_DEST;
  connection = std::dynamic_pointer_cast<Connection>(object);
  return connection != nullptr ? kIOReturnSuccess : kIOReturnBadArgument;
}

/// A handle's user client, shared for the time of one call, or why there is none.
kern_return_t FindClient(io_connect_t handle, std::shared_ptr<UserClient>& client) {
  const std::lock_guard lock(SharedState().mutex);
  std::shared_ptr<Connection> connection;
  const kern_return_t found = FindConnection(handle, connection);
  if (found == kIOReturnSuccess) client = connection->client;
  return found;
}

/// A driver's answer; what it throws never reaches the caller of a C function.
template <class Call>
kern_return_t AnswerOf(Call call) {
  try {
    return call();
  } catch (const std::bad_alloc&) {
    return kIOReturnNoMemory;
  } catch (const std::exception&) {
    return kIOReturnError;
  }
}

/// A handle's service and whether it is still there, or why there is none.
kern_return_t FindService(io_service_t handle, std::shared_ptr<Entry>& entry, bool& active) {
  const std::lock_guard lock(SharedState().mutex);
  const std::shared_ptr<KernelObject> object = SharedState().handles.Find(handle);
  if (object == nullptr) return MACH_SEND_INVALID_DEST;
  entry = std::dynamic_pointer_cast<Entry>(object);
  const bool isService = entry != nullptr && (entry->registered || entry->IsOfClass("IOService"));
  active = isService && entry->active;
  return isService ? kIOReturnSuccess : kIOReturnBadArgument;
}

/// Asks the driver for a user client, outside of the lock, because this may take long.
kern_return_t AskDriver(const Entry& entry, std::shared_ptr<UserClient>& client) {
  const darwin::UserClientFactory& open = entry.Description().openUserClient;
  if (!open) return kIOReturnUnsupported;
  return AnswerOf([&] {
    int error = kIOReturnUnsupported;
    client = open(error);
    if (client != nullptr) return kIOReturnSuccess;
    // A driver that reports success but gives no client has failed.
    return error != kIOReturnSuccess ? error : kIOReturnUnsupported;
  });
}

/// Makes the client a connection of the service, unless the service ended while the driver was asked.
kern_return_t Connect(const std::shared_ptr<Entry>& entry, std::shared_ptr<UserClient> client, io_connect_t& connect) {
  const auto connection = std::make_shared<Connection>(std::move(client), entry->Id());
  const std::lock_guard lock(SharedState().mutex);
  if (!entry->active) return kIOReturnNoDevice;
  darwin::Prune(entry->connections);
  entry->connections.push_back(connection);
  connect = SharedState().handles.Grant(connection);
  return kIOReturnSuccess;
}

/// Ends a connection whatever else refers to it, and tells everyone interested in its service.
kern_return_t Disconnect(io_connect_t connect) {
  std::shared_ptr<UserClient> client;  // let go after the lock, or when the call in progress ends
  std::shared_ptr<Connection> connection;
  {
    const std::lock_guard lock(SharedState().mutex);
    if (const kern_return_t found = FindConnection(connect, connection); found != kIOReturnSuccess) return found;
    client = std::exchange(connection->client, nullptr);
    SharedState().handles.Kill(connection.get());
  }
  darwin::Registry::Shared().SendMessage(connection->service, kIOMessageServiceWasClosed);
  return kIOReturnSuccess;
}

}  // namespace

extern "C" {

kern_return_t IOServiceOpen(io_service_t service, task_port_t owningTask, uint32_t, io_connect_t* connect) {
  std::shared_ptr<Entry> entry;
  bool active = false;
  if (const kern_return_t found = FindService(service, entry, active); found != kIOReturnSuccess) return found;
  if (owningTask != mach_task_self()) return kIOReturnBadArgument;
  *connect = IO_OBJECT_NULL;
  if (!active) return kIOReturnNoDevice;
  darwin::Registry::Shared().SendMessage(entry->Id(), kIOMessageServiceIsAttemptingOpen);
  std::shared_ptr<UserClient> client;
  const kern_return_t answer = AskDriver(*entry, client);
  return answer == kIOReturnSuccess ? Connect(entry, std::move(client), *connect) : answer;
}

kern_return_t IOServiceClose(io_connect_t connect) {
  const kern_return_t result = Disconnect(connect);
  // Releases the handle in any case; returns the code of Disconnect.
  IOObjectRelease(connect);
  return result;
}

kern_return_t IOConnectCallScalarMethod(mach_port_t connection, uint32_t selector, const uint64_t*, uint32_t inputCnt,
                                        uint64_t*, uint32_t* outputCnt) {
  std::shared_ptr<UserClient> client;
  if (const kern_return_t found = FindClient(connection, client); found != kIOReturnSuccess) return found;
  // No method here takes or gives scalars.
  if (inputCnt > 0 || (outputCnt != nullptr && *outputCnt > 0)) return kIOReturnBadArgument;
  return AnswerOf([&] { return client->CallScalar(selector); });
}

kern_return_t IOConnectCallStructMethod(mach_port_t connection, uint32_t selector, const void* inputStruct,
                                        size_t inputStructCnt, void* outputStruct, size_t* outputStructCnt) {
  std::shared_ptr<UserClient> client;
  if (const kern_return_t found = FindClient(connection, client); found != kIOReturnSuccess) return found;
  std::size_t produced = outputStructCnt != nullptr ? *outputStructCnt : 0;
  if (inputStructCnt > kLargestInlineStruct || produced > kLargestInlineStruct) return kIOReturnBadArgument;
  // Outputs stay as they are unless the method succeeds.
  alignas(std::max_align_t) unsigned char output[kLargestInlineStruct];
  const std::size_t capacity = produced;
  std::fill_n(output, capacity, static_cast<unsigned char>(0));
  const kern_return_t result =
      AnswerOf([&] { return client->CallStruct(selector, inputStruct, inputStructCnt, output, &produced); });
  if (result == kIOReturnSuccess) {
    produced = std::min(produced, capacity);
    std::copy_n(output, produced, static_cast<unsigned char*>(outputStruct));
    if (outputStructCnt != nullptr) *outputStructCnt = produced;
  }
  return result;
}

}  // extern "C"
