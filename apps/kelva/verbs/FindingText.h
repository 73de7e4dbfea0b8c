#ifndef KELVA_APPS_KELVA_VERBS_FINDING_TEXT_H_
#define KELVA_APPS_KELVA_VERBS_FINDING_TEXT_H_

#include <string>
#include <vector>

#include "apps/doctor/Finding.h"

namespace apps {

/// The findings as a person reads them: a paragraph each, with the command that mends it and the advice.
std::string TextOf(const std::vector<doctor::Finding>& findings);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_FINDING_TEXT_H_
