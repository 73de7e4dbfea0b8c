#ifndef KELVA_APPS_COMMANDLINE_PROGRAM_H_
#define KELVA_APPS_COMMANDLINE_PROGRAM_H_

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/commandline/ExitCode.h"
#include "apps/commandline/Verb.h"

namespace apps {

class Invocation;

/// An environment variable that a program heeds.
struct Variable {
  std::string_view name;
  std::string_view meaning;
};

/// One program: its name and its table of verbs. Parser, help, manual pages, completions and messages take all they say
/// about a program from here. Everything it refers to lives as long as the process.
struct Program {
  std::string_view name;                                ///< "kelva"
  std::string_view version;                             ///< "1.2.3"
  std::string_view summary;                             ///< one line, without a full stop
  std::string_view description;                         ///< for the manual page; paragraphs separated by an empty line
  std::span<const Verb> verbs;                          ///< in the order of the help; HelpVerbs() among them
  std::span<const Option> options;                      ///< those that every verb takes; kHelpOption among them
  std::span<const ExitCodeRow> exitCodes = kExitCodes;  ///< those that it ends with
  std::span<const Variable> environment = {};
  /// The serial numbers that a shell offers for Offer::kSerial after the command line so far; null for none.
  std::vector<std::string> (*serials)(const Invocation& call) = nullptr;
  /// The same for Offer::kCameraPath, kPicture and kPictureFolder, for a word of which `typed` is there. A name that ends
  /// in a slash is only a beginning. Any bytes; the caller leaves out what cannot be typed.
  std::vector<std::string> (*cameraWords)(const Invocation& call, Offer offer, const std::string& typed) = nullptr;
  bool plainErrors = false;  ///< people read its JSON, in a window: no numbers behind an error
};

/// Options that the code which all programs share understands.
inline constexpr Option kJsonOption = {
    "json", 0, "", "Print the result as one JSON document, and messages and progress as one JSON object a line."};
inline constexpr Option kQuietOption = {"quiet", 'q', "",
                                        "No progress and no remarks; only the result, errors and questions."};
inline constexpr Option kVerboseOption = {"verbose", 'v', "", "Say more: the command and the codes behind an error."};
inline constexpr Option kHelpOption = {"help", 'h', "", "Say how the command is used."};

/// The verbs completion, manual and help, which explain the program they belong to.
std::span<const Verb> HelpVerbs();

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_PROGRAM_H_
