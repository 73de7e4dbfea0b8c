#ifndef KELVA_APPS_COMMANDLINE_NEAREST_H_
#define KELVA_APPS_COMMANDLINE_NEAREST_H_

#include <cstddef>
#include <span>
#include <string_view>

#include "apps/commandline/Verb.h"

namespace apps {

/// Letters to insert, delete or replace to turn one word into the other.
std::size_t EditDistance(std::string_view a, std::string_view b);

/// The verb that someone who typed `word` probably meant: at most two slips away, and not more
/// than half of the word.
/// Empty when there is none.
std::string_view NearestVerb(std::span<const Verb> table, std::string_view word);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_NEAREST_H_
