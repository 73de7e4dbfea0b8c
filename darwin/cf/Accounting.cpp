#include "darwin/cf/Accounting.h"

#include <filesystem>
#include <iterator>

#include "darwin/cf/Object.h"

namespace darwin {

std::size_t LiveCoreFoundationObjects() {
  return cf::Object::LiveCount();
}

std::size_t OpenDescriptors() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  // The one that does the counting is not the caller's.
  return static_cast<std::size_t>(std::distance(begin(all), end(all))) - 1;
}

}  // namespace darwin
