#ifndef KELVA_APPS_IMPORT_TAKEN_TIME_H_
#define KELVA_APPS_IMPORT_TAKEN_TIME_H_

#include <chrono>
#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "src/wifi/DcfObj.h"

namespace apps {

/// When a picture was taken: what the clock of its camera showed. It has no zone.
using TakenTime = std::chrono::local_seconds;

/// Reads "2026-03-14 15:09:26". Nothing for another text, for a time that no calendar or clock shows, as cameras give it
/// whose clock was never set ("0000-00-00 00:00:00"), and for a year before 1970 or after 2199.
std::optional<TakenTime> ParseTaken(std::string_view text);
/// "2026-03-14 15:09:26".
std::string TakenText(TakenTime time);
/// The time that the catalogue gives, where it is one.
std::optional<TakenTime> CatalogueTaken(const DcfObj& picture);
/// Says when a picture was taken; nothing when nobody knows.
using TimeOf = std::function<std::optional<TakenTime>(const DcfObj&)>;
/// The moment at which this computer's clock shows the time, in its own zone.
std::time_t MomentHere(TakenTime time);

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_TAKEN_TIME_H_
