#ifndef KELVA_APPS_COMMANDLINE_DISCRETION_H_
#define KELVA_APPS_COMMANDLINE_DISCRETION_H_

#include <span>
#include <string>

#include "apps/commandline/Program.h"

namespace apps {

/// A sentence about a command line, without what was typed there if that may be a secret: the line names a verb before
/// which people are asked for one (Verb::mayMeetSecrets), and somebody may have typed it as an argument or as the value of
/// any option. "(hidden)" stands in its place. Words of less than four characters stay.
std::string Discreet(std::string sentence, const Program& program, std::span<const char* const> arguments);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_DISCRETION_H_
