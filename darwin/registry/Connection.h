#ifndef KELVA_DARWIN_REGISTRY_CONNECTION_H_
#define KELVA_DARWIN_REGISTRY_CONNECTION_H_

#include <memory>
#include <utility>

#include "darwin/registry/KernelObject.h"
#include "darwin/registry/Registry.h"

namespace darwin {

/// One open user client. The client is shared with a call in progress, so that it outlives a termination in its midst.
class Connection final : public KernelObject {
 public:
  explicit Connection(std::shared_ptr<UserClient> opened) : client(std::move(opened)) {}

  std::shared_ptr<UserClient> client;  ///< null once the service has ended; guarded by the registry's mutex
};

}  // namespace darwin

#endif  // KELVA_DARWIN_REGISTRY_CONNECTION_H_
