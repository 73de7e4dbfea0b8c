#include "SizeReconciliation.h"

#include "ErrorPolicy.h"
#include "FatalAssertion.h"

namespace kelva {

bool ReconcileSize(std::uint64_t received, std::uint32_t announced, const char* function) {
  if (received > announced && received - 1 != announced) FailAssertion("data.size() - 1 == fileSize", function);
  if (received < announced) {
    ReportProtocolError("ReadFile() truncated.");
    return false;
  }
  return true;
}

}  // namespace kelva
