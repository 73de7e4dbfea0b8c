#ifndef KELVA_APPS_COMMANDLINE_VERB_H_
#define KELVA_APPS_COMMANDLINE_VERB_H_

#include <span>
#include <string_view>

#include "apps/commandline/ExitCode.h"

namespace apps {

class Context;

/// What a shell offers where a word is expected.
enum class Offer { kNothing, kFile, kFolder, kWords, kVerb, kSerial, kCameraPath, kPicture, kPictureFolder };

/// A word that a verb takes beside its options.
struct Argument {
  std::string_view name;  ///< as the help shows it: "PATH"
  std::string_view help;
  enum class Count { kOne, kOptional, kOneOrMore } count = Count::kOne;
  Offer offer = Offer::kNothing;
  std::string_view words = {};  ///< for Offer::kWords: the words, separated by blanks
};

/// An option. All are long; the common ones have a letter too.
struct Option {
  std::string_view name;   ///< without its dashes: "serial"
  char letter;             ///< 0 for none
  std::string_view value;  ///< the value's name in the help, empty for a switch
  std::string_view help;
  Offer offer = Offer::kNothing;
  std::string_view words = {};
  std::string_view alias = {};  ///< a second name, accepted but not shown
  bool needed = false;          ///< whether the verb cannot do without it
};

/// For verbs that take none.
inline constexpr std::span<const Argument> kNoArguments;
inline constexpr std::span<const Option> kNoOptions;

/// In `command`, the word PROGRAM stands for the program's name.
struct Example {
  std::string_view command;
  std::string_view meaning;
};

/// One row of the table of verbs. Parsing, --help, the manual pages and the completions all come from it.
struct Verb {
  std::string_view name;     ///< one word, or two ("wifi name")
  std::string_view summary;  ///< one line, without a full stop
  std::span<const Argument> arguments = {};
  std::span<const Option> options = {};
  std::string_view details;  ///< paragraphs separated by an empty line; lines may end anywhere
  std::string_view json;     ///< the members of the result, one for each line: "name: meaning"
  std::span<const Example> examples;
  ExitCode (*run)(Context&);
  bool guarded = false;               ///< an abort in one item does not end the whole; see Guard
  std::string_view guardedWith = {};  ///< for verbs that are guarded with one option only: that option
  std::string_view alias = {};        ///< a second name, accepted but not listed
  bool mayMeetSecrets = false;        ///< errors do not repeat what was typed; see Discreet
  std::string_view doneBy = {};       ///< the program that does it in this one's place; `run` is then null
};

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_VERB_H_
