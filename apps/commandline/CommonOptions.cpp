#include "apps/commandline/Verb.h"

namespace apps {
namespace {

constexpr Option kCommon[] = {
    {"serial", 's', "SERIAL", "The camera with this USB serial number; KELVA_SERIAL says it for all commands."},
    {"virtual", 0, "SOCKET", "Look for cameras on the virtual bus of `kelva-vcam serve`, not on this machine.",
     Offer::kFile},
    {"json", 0, "", "Print the result as one JSON document, and messages and progress as one JSON object a line."},
    {"quiet", 'q', "", "No progress and no remarks; only the result, errors and questions."},
    {"timeout", 0, "SECONDS", "End after this time, with exit status 8."},
    {"help", 'h', "", "Say how the command is used."},
};

}  // namespace

std::span<const Option> CommonOptions() {
  return kCommon;
}

}  // namespace apps
