#ifndef KELVA_APPS_DOCTOR_HOLDER_H_
#define KELVA_APPS_DOCTOR_HOLDER_H_

#include <string>
#include <vector>

namespace apps::doctor {

/// A process that uses a camera.
struct Holder {
  int pid = 0;
  std::string name;
  bool operator==(const Holder&) const = default;
};

/// The holders as part of a sentence: "photos (process 4711), kelva (process 4712)".
std::string InWords(const std::vector<Holder>& holders);

}  // namespace apps::doctor

#endif  // KELVA_APPS_DOCTOR_HOLDER_H_
