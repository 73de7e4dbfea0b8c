#ifndef KELVA_APPS_COMMANDLINE_PARSE_H_
#define KELVA_APPS_COMMANDLINE_PARSE_H_

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "apps/commandline/Program.h"

namespace apps {

/// A command line that has been understood: one verb, its words and its options.
class Invocation {
 public:
  const Program* program = nullptr;
  const Verb* verb = nullptr;  ///< null when only --help or --version was asked
  std::vector<std::string> words;
  bool version = false;
  bool byAlias = false;  ///< whether the verb was called by its second name

  /// The verb's name as it was given; empty without a verb.
  std::string_view Name() const;

  bool Has(std::string_view option) const;
  /// The option's last value, or nothing.
  std::optional<std::string> Value(std::string_view option) const;
  /// All values of an option that may be given several times, in order.
  std::vector<std::string> Values(std::string_view option) const;
  void Add(std::string_view option, std::string value) { options_.emplace_back(option, std::move(value)); }

 private:
  std::vector<std::pair<std::string_view, std::string>> options_;
};

/// Reads a command line without the program's name. Options may stand anywhere; "--" ends them; "-" and negative
/// numbers are words. Throws Failure(kUsage).
Invocation Parse(const Program& program, std::span<const char* const> arguments);

/// What can be understood of a command line that is still being typed, for completion.
struct Beginning {
  Invocation call;
  const Option* pending = nullptr;  ///< the last word is this option, and its value is to come
  std::string first = {};           ///< the last word, if verbs' names begin with it and it is not a verb itself
  bool onlyWords = false;           ///< after "--"
};
Beginning ParseBeginning(const Program& program, std::span<const char* const> arguments);

/// The verb of a table by its full name, or null.
const Verb* FindVerb(std::span<const Verb> table, std::string_view name);

/// A duration in seconds, with decimals: "2.5". Throws Failure(kUsage) naming the option.
enum class Zero { kRefused, kTaken };
std::chrono::milliseconds ParseSeconds(std::string_view text, std::string_view option, Zero zero = Zero::kRefused);

/// A whole number between two bounds. Throws Failure(kUsage) naming what was expected.
long long ParseNumber(std::string_view text, std::string_view what, long long least, long long most);

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_PARSE_H_
