#ifndef KELVA_DARWIN_REGISTRY_ACCOUNTING_H_
#define KELVA_DARWIN_REGISTRY_ACCOUNTING_H_

#include <cstddef>

namespace darwin {

/// Counts what this process holds of the registry, so that a test can check that nothing is left.
struct RegistryAccounting {
  std::size_t handles;     ///< numbers in use: entries, iterators, notifications, connections, dead ones included
  std::size_t references;  ///< references to them
  std::size_t services;    ///< services that matching can find
  std::size_t entries;     ///< active entries, the root included
  std::size_t ports;       ///< notification ports
};

RegistryAccounting AccountForRegistry();

}  // namespace darwin

#endif  // KELVA_DARWIN_REGISTRY_ACCOUNTING_H_
