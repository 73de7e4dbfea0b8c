#ifndef KELVA_DARWIN_CF_ACCOUNTING_H_
#define KELVA_DARWIN_CF_ACCOUNTING_H_

#include <cstddef>

namespace darwin {

/// CoreFoundation objects that somebody still owns; constants and each thread's run loop do not count.
std::size_t LiveCoreFoundationObjects();

/// Descriptors that this process has open.
std::size_t OpenDescriptors();

}  // namespace darwin

#endif  // KELVA_DARWIN_CF_ACCOUNTING_H_
