#include "tests/umockdev/HandOver.h"

namespace mock {

void GiveOver() {}
void TakeOver() {}

}  // namespace mock
