// Who holds a camera, in words.

#include "apps/doctor/Holder.h"

namespace apps::doctor {

std::string InWords(const std::vector<Holder>& holders) {
  std::string words;
  for (const Holder& holder : holders) {
    words += (words.empty() ? "" : ", ") + holder.name + " (process " + std::to_string(holder.pid) + ")";
  }
  return words;
}

}  // namespace apps::doctor
