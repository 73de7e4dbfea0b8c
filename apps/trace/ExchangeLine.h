#ifndef KELVA_APPS_TRACE_EXCHANGE_LINE_H_
#define KELVA_APPS_TRACE_EXCHANGE_LINE_H_

#include <chrono>
#include <string>
#include <string_view>

#include "apps/trace/Discretion.h"
#include "src/wifi/Traced.h"

namespace apps {

/// Which exchange it is: of which process and camera, the how manieth of that camera, and when it began.
struct ExchangePlace {
  int process;
  int camera;
  unsigned long long number;
  std::chrono::microseconds at;
};

/// The line of an exchange that is over, with its line feed: one JSON object as docs/trace.md describes it. With a
/// `serial` the line has stand-ins for it and for other names (see WithStandIns); null for none.
/// It stands in `buffer`, which grows as it has to, and is valid until that changes.
std::string_view ExchangeLine(const ExchangePlace& place, const kelva::Exchange& exchange, Disclosure disclosure,
                              const std::string* serial, std::string& buffer);

/// The line of an exchange that has begun and will not end in this trace.
std::string UnfinishedLine(const ExchangePlace& place, const kelva::Exchange& exchange, Disclosure disclosure);

}  // namespace apps

#endif  // KELVA_APPS_TRACE_EXCHANGE_LINE_H_
