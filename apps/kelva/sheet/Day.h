#ifndef KELVA_APPS_KELVA_SHEET_DAY_H_
#define KELVA_APPS_KELVA_SHEET_DAY_H_

#include <string>
#include <string_view>

namespace apps {

/// The day of a time such as "2026-03-14 15:09:26", for people: "Saturday, 14 March 2026". Empty when there is no such
/// day in the calendar, or nothing is given.
std::string DayName(std::string_view time);

/// The same without the day of the week, for a range: "14 March 2026".
std::string ShortDayName(std::string_view time);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_SHEET_DAY_H_
