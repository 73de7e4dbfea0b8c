// Connections to a service's user client.

#include <IOKit/IOKitLib.h>

#include <algorithm>
#include <cstddef>
#include <exception>

#include "darwin/registry/Connection.h"
#include "darwin/registry/State.h"

namespace {

using darwin::Connection;
using darwin::Entry;
using darwin::KernelObject;
using darwin::SharedState;
using darwin::UserClient;

constexpr std::size_t kLargestInlineStruct = 4096;
constexpr uint32_t kMostScalars = 16;

/// A handle's user client, shared for the time of one call, or why there is none.
kern_return_t FindClient(io_connect_t handle, std::shared_ptr<UserClient>& client) {
  const std::lock_guard lock(SharedState().mutex);
  const std::shared_ptr<KernelObject> object = SharedState().handles.Find(handle);
  if (object == nullptr) {
    return MACH_SEND_INVALID_DEST;
  }
  const auto* connection = dynamic_cast<const Connection*>(object.get());
  if (connection == nullptr) {
    return kIOReturnBadArgument;
  }
  client = connection->client;
  return kIOReturnSuccess;
}

kern_return_t FindService(io_service_t handle, std::shared_ptr<Entry>& entry) {
  const std::lock_guard lock(SharedState().mutex);
  const std::shared_ptr<KernelObject> object = SharedState().handles.Find(handle);
  if (object == nullptr) {
    return MACH_SEND_INVALID_DEST;
  }
  entry = std::dynamic_pointer_cast<Entry>(object);
  return entry != nullptr && entry->registered ? kIOReturnSuccess : kIOReturnBadArgument;
}

/// Asks the driver for a user client, outside of the lock: this may take its time.
std::shared_ptr<UserClient> AskDriver(const Entry& entry, int& error) {
  error = kIOReturnUnsupported;
  const darwin::UserClientFactory& open = entry.Description().openUserClient;
  try {
    return open ? open(error) : nullptr;
  } catch (const std::exception&) {
    error = kIOReturnError;
    return nullptr;
  }
}

}  // namespace

extern "C" {

kern_return_t IOServiceOpen(io_service_t service, task_port_t owningTask, uint32_t, io_connect_t* connect) {
  std::shared_ptr<Entry> entry;
  if (const kern_return_t found = FindService(service, entry); found != kIOReturnSuccess) {
    return found;
  }
  if (owningTask != mach_task_self()) {
    return kIOReturnBadArgument;
  }
  int error = kIOReturnSuccess;
  std::shared_ptr<UserClient> client = AskDriver(*entry, error);
  if (client == nullptr) {
    *connect = IO_OBJECT_NULL;
    return error;
  }
  auto connection = std::make_shared<Connection>(client);
  const std::lock_guard lock(SharedState().mutex);
  if (!entry->active) {
    *connect = IO_OBJECT_NULL;
    return kIOReturnNoDevice;
  }
  std::erase_if(entry->connections, [](const auto& reference) { return reference.expired(); });
  entry->connections.push_back(connection);
  *connect = SharedState().handles.Grant(connection);
  return kIOReturnSuccess;
}

kern_return_t IOServiceClose(io_connect_t connect) {
  std::shared_ptr<UserClient> client;
  const kern_return_t found = FindClient(connect, client);
  // The name goes in any case; the first code is returned.
  IOObjectRelease(connect);
  return found;
}

kern_return_t IOConnectCallScalarMethod(mach_port_t connection, uint32_t selector, const uint64_t*, uint32_t inputCnt,
                                        uint64_t*, uint32_t* outputCnt) {
  std::shared_ptr<UserClient> client;
  if (const kern_return_t found = FindClient(connection, client); found != kIOReturnSuccess) {
    return found;
  }
  // No method here takes or gives scalars.
  if (inputCnt > 0 || (outputCnt != nullptr && *outputCnt > kMostScalars)) {
    return kIOReturnBadArgument;
  }
  const kern_return_t result = client->CallScalar(selector);
  if (result == kIOReturnSuccess && outputCnt != nullptr) {
    *outputCnt = 0;
  }
  return result;
}

kern_return_t IOConnectCallStructMethod(mach_port_t connection, uint32_t selector, const void* inputStruct,
                                        size_t inputStructCnt, void* outputStruct, size_t* outputStructCnt) {
  std::shared_ptr<UserClient> client;
  if (const kern_return_t found = FindClient(connection, client); found != kIOReturnSuccess) {
    return found;
  }
  std::size_t produced = outputStructCnt != nullptr ? *outputStructCnt : 0;
  if (inputStructCnt > kLargestInlineStruct || produced > kLargestInlineStruct) {
    return kIOReturnBadArgument;
  }
  // Outputs stay as they are unless the method succeeds.
  alignas(std::max_align_t) unsigned char output[kLargestInlineStruct];
  const std::size_t capacity = produced;
  const kern_return_t result = client->CallStruct(selector, inputStruct, inputStructCnt, output, &produced);
  if (result == kIOReturnSuccess) {
    produced = std::min(produced, capacity);
    std::copy_n(output, produced, static_cast<unsigned char*>(outputStruct));
    if (outputStructCnt != nullptr) {
      *outputStructCnt = produced;
    }
  }
  return result;
}

}  // extern "C"
