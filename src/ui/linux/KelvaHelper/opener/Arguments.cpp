// Reads the command line of the opener.

#include "src/ui/linux/KelvaHelper/opener/Arguments.h"

namespace opener {
namespace {

Arguments Wrong(std::string complaint) {
  Arguments arguments;
  arguments.request = Arguments::Request::kWrong;
  arguments.complaint = std::move(complaint);
  return arguments;
}

Arguments Only(Arguments::Request request) {
  Arguments arguments;
  arguments.request = request;
  return arguments;
}

}  // namespace

Arguments ParseArguments(const std::vector<std::string>& words) {
  Arguments arguments;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (word == "--help") return Only(Arguments::Request::kHelp);
    if (word == "--version") return Only(Arguments::Request::kVersion);
    if (word == "--virtual") {
      if (++i == words.size() || words[i].empty()) return Wrong("--virtual needs the path of a virtual bus's socket.");
      arguments.virtualBus = words[i];
    } else if (!word.empty() && word.front() == '-') {
      return Wrong("\"" + word + "\" is no desktop id; --help says how this program is used.");
    } else if (word.empty() || !arguments.desktopId.empty()) {
      return Wrong("This program takes one argument, the desktop id of the application to start.");
    } else {
      arguments.desktopId = word;
    }
  }
  if (arguments.desktopId.empty()) {
    return Wrong("This program takes one argument, the desktop id of the application to start.");
  }
  return arguments;
}

std::string HelpText() {
  return "Usage: kelva-open DESKTOP_ID [--virtual PATH]\n"
         "\n"
         "Starts the desktop application whose entry is DESKTOP_ID.desktop, and ends.\n"
         "When it is not installed: has kelva-mount show every attached camera as a folder, and opens those that\n"
         "were none before with your own program for pictures (x-content/image-dcf) or for folders.\n"
         "\n"
         "  --virtual PATH  the folders are those of the cameras on the virtual bus whose socket is PATH\n"
         "  --help          print this text\n"
         "  --version       print the version\n"
         "\n"
         "KELVA_ON_PLUG=desktop-only in the environment: starts the application or nothing.\n"
         "\n"
         "Exit codes: 0 started; 1 it could not be started, or a camera not mounted; 2 wrong arguments; 3 not "
         "installed.\n";
}

std::string VersionText() {
  return "kelva-open " KELVA_VERSION "\n";
}

}  // namespace opener
