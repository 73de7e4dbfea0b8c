#ifndef KELVA_APPS_KELVA_VERBS_NUMBER_H_
#define KELVA_APPS_KELVA_VERBS_NUMBER_H_

#include "apps/commandline/Decimal.h"
#include "apps/commandline/Json.h"

namespace apps {

/// A camera's single-precision number as the number a person reads: 0.87, not 0.8700000047683716. Null when not finite.
Json NumberOf(float value);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_NUMBER_H_
