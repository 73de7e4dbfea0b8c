#ifndef KELVA_APPS_DECODER_LIMITS_H_
#define KELVA_APPS_DECODER_LIMITS_H_

#include <sys/resource.h>

#include <algorithm>
#include <utility>

namespace apps {

/// The bounds of a process that decodes pictures, as every POSIX system has them; the user's own, where they are lower.
/// False when the system refuses one.
inline bool LimitResources() {
  // The largest file (256 MiB), and all coefficients of the largest picture that comes in several passes (320 MB).
  constexpr rlim_t kMemory = rlim_t{1} << 30;
  // For all the pictures that one process draws.
  constexpr rlim_t kProcessorSeconds = 600;
  for (const auto& [resource, most] : {std::pair{RLIMIT_AS, kMemory},
                                       {RLIMIT_CPU, kProcessorSeconds},
                                       {RLIMIT_FSIZE, 0},
                                       {RLIMIT_NOFILE, 0},
                                       {RLIMIT_CORE, 0}}) {
    rlimit limit{};
    if (::getrlimit(resource, &limit) != 0) return false;
    limit.rlim_max = std::min<rlim_t>(limit.rlim_max, most);  // RLIM_INFINITY is the largest number
    limit.rlim_cur = limit.rlim_max;
    if (::setrlimit(resource, &limit) != 0) return false;
  }
  return true;
}

}  // namespace apps

#endif  // KELVA_APPS_DECODER_LIMITS_H_
