#ifndef KELVA_DARWIN_REGISTRY_CONNECTION_H_
#define KELVA_DARWIN_REGISTRY_CONNECTION_H_

#include <memory>
#include <utility>

#include "darwin/registry/KernelObject.h"
#include "darwin/registry/Registry.h"

namespace darwin {

/// One open user client. A call in progress shares the client, so that the client outlives a termination during the
/// call.
class Connection final : public KernelObject {
 public:
  Connection(std::shared_ptr<UserClient> opened, EntryId openedOn) : client(std::move(opened)), service(openedOn) {}

  std::shared_ptr<UserClient>
      client;  ///< null once it is closed or the service has ended; guarded by the registry's mutex
  const EntryId service;
};

}  // namespace darwin

#endif  // KELVA_DARWIN_REGISTRY_CONNECTION_H_
