// Reads the command line of the agent.

#include "src/ui/linux/KelvaHelper/Arguments.h"

#include <string_view>

namespace helper {
namespace {

// `--socket` is the older name of the option.
bool IsVirtual(std::string_view option) {
  return option == "--virtual" || option == "--socket";
}

Arguments Wrong(std::string complaint) {
  return {Arguments::Request::kWrong, {}, std::move(complaint)};
}

}  // namespace

Arguments ParseArguments(const std::vector<std::string>& arguments) {
  Arguments result;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    const std::size_t equals = argument.find('=');
    if (argument == "--help" || argument == "-h") return {Arguments::Request::kHelp, {}, {}};
    if (argument == "--version") return {Arguments::Request::kVersion, {}, {}};
    if (IsVirtual(argument) && i + 1 < arguments.size()) {
      result.virtualBus = arguments[++i];
    } else if (equals != std::string::npos && IsVirtual(std::string_view(argument).substr(0, equals))) {
      result.virtualBus = argument.substr(equals + 1);
    } else if (!IsVirtual(argument)) {
      return Wrong("\"" + argument + "\" is not an argument of this program; --help lists them.");
    }
    if (result.virtualBus.empty()) return Wrong("--virtual needs the path of a virtual bus's socket.");
  }
  return result;
}

std::string HelpText() {
  return "Usage: kelva-helper [--virtual PATH]\n"
         "\n"
         "Waits for Kelva cameras and starts the desktop application " KELVA_DESKTOP_ID
         "\n"
         "each time one is plugged in. Cameras that are there at the start launch nothing.\n"
         "When that is not installed, kelva-mount shows the camera as a folder, which your own\n"
         "program for pictures opens; KELVA_ON_PLUG=desktop-only in the environment prevents it.\n"
         "Runs until SIGTERM or Ctrl-C; one copy per login session.\n"
         "\n"
         "  --virtual PATH  watch the virtual bus whose socket is PATH, not this machine's devices\n"
         "  --help          print this text\n"
         "  --version       print the version\n"
         "\n"
         "Exit codes: 0 ended as asked, or another copy already serves this session;\n"
         "1 cameras cannot be watched; 2 wrong arguments.\n";
}

std::string VersionText() {
  return "kelva-helper " KELVA_VERSION "\n";
}

}  // namespace helper
