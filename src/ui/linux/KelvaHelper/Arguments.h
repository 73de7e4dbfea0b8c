#ifndef KELVA_UI_LINUX_KELVA_HELPER_ARGUMENTS_H_
#define KELVA_UI_LINUX_KELVA_HELPER_ARGUMENTS_H_

#include <string>
#include <vector>

namespace helper {

/// What the command line asks the agent for.
struct Arguments {
  enum class Request { kWatch, kHelp, kVersion, kWrong };
  Request request = Request::kWatch;
  /// The socket of the virtual bus to watch instead of the machine's own devices; empty: the machine.
  std::string virtualBus;
  /// One sentence; set only with kWrong.
  std::string complaint;
};

/// Reads the arguments that follow the program's name. Never throws.
Arguments ParseArguments(const std::vector<std::string>& arguments);

/// The text of --help, and the line of --version, both with their line feed.
std::string HelpText();
std::string VersionText();

}  // namespace helper

#endif  // KELVA_UI_LINUX_KELVA_HELPER_ARGUMENTS_H_
