#include "darwin/cf/Number.h"

namespace darwin::cf {

bool Number::Equals(const Object& other) const {
  return value_ == static_cast<const Number&>(other).value_;
}

bool Truth::Equals(const Object& other) const {
  return value_ == static_cast<const Truth&>(other).value_;
}

}  // namespace darwin::cf
