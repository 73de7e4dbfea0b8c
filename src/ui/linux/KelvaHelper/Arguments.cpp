#include "src/ui/linux/KelvaHelper/Arguments.h"

#include <string_view>

namespace helper {
namespace {

constexpr std::string_view kVirtual = "--virtual";

Arguments Wrong(std::string complaint) {
  return {Arguments::Request::kWrong, {}, std::move(complaint)};
}

}  // namespace

Arguments ParseArguments(const std::vector<std::string>& arguments) {
  Arguments result;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument == "--help" || argument == "-h") return {Arguments::Request::kHelp, {}, {}};
    if (argument == "--version") return {Arguments::Request::kVersion, {}, {}};
    if (argument == kVirtual && i + 1 < arguments.size()) {
      result.virtualBus = arguments[++i];
    } else if (argument.rfind("--virtual=", 0) == 0) {
      result.virtualBus = argument.substr(kVirtual.size() + 1);
    } else if (argument != kVirtual) {
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
