// Prints a camera's numbers as people read them.
#include "apps/kelva/verbs/Number.h"

#include <optional>

namespace apps {

Json NumberOf(float value) {
  const std::optional<double> number = ParseDecimal(Shortest(value));
  return number ? Json(*number) : Json();
}

}  // namespace apps
