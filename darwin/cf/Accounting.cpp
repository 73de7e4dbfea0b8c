// Counts the objects and descriptors that this process holds; tests compare the numbers before and after.

#include "darwin/cf/Accounting.h"

#include <filesystem>
#include <iterator>

#include "darwin/cf/Object.h"

namespace darwin {

std::size_t LiveCoreFoundationObjects() {
  return cf::Object::LiveCount();
}

std::size_t OpenDescriptors() {
  const std::filesystem::directory_iterator all("/dev/fd");
  // Minus the descriptor with which the folder itself is read.
  return static_cast<std::size_t>(std::distance(begin(all), end(all))) - 1;
}

}  // namespace darwin
