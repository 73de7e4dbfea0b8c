#ifndef KELVA_UI_LINUX_KELVA_HELPER_OPENER_ARGUMENTS_H_
#define KELVA_UI_LINUX_KELVA_HELPER_OPENER_ARGUMENTS_H_

#include <string>
#include <vector>

namespace opener {

/// What the command line asks the opener for.
struct Arguments {
  enum class Request { kOpen, kHelp, kVersion, kWrong };
  Request request = Request::kOpen;
  /// The desktop id of the application to start.
  std::string desktopId;
  /// The socket of the virtual bus that has the cameras; empty: this machine.
  std::string virtualBus;
  /// One sentence; set only with kWrong.
  std::string complaint;
};

/// Reads the arguments that follow the program's name.
Arguments ParseArguments(const std::vector<std::string>& words);

/// The text of --help, and the line of --version, both with their line feed.
std::string HelpText();
std::string VersionText();

}  // namespace opener

#endif  // KELVA_UI_LINUX_KELVA_HELPER_OPENER_ARGUMENTS_H_
