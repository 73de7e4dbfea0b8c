// Reads a command line against a program's table of verbs.
#include "apps/commandline/Parse.h"

#include <cctype>
#include <charconv>
#include <cmath>

#include "apps/commandline/Decimal.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Nearest.h"
#include "apps/commandline/Printable.h"

namespace apps {
namespace {

Failure Usage(const std::string& sentence) {
  return Failure(ExitCode::kUsage, sentence);
}

bool IsOption(std::string_view word) {
  const bool number = word.size() > 1 && std::isdigit(static_cast<unsigned char>(word[1])) != 0;
  return word.size() > 1 && word[0] == '-' && !number;
}

const Option* FindOption(std::span<const Option> options, std::string_view name) {
  for (const Option& option : options) {
    if (option.name == name || (!option.alias.empty() && option.alias == name)) return &option;
  }
  return nullptr;
}

const Option* FindLetter(std::span<const Option> options, char letter) {
  for (const Option& option : options) {
    if (letter != 0 && option.letter == letter) return &option;
  }
  return nullptr;
}

class Parser {
 public:
  Parser(const Program& program, std::span<const char* const> arguments) : program_(program), rest_(arguments) {
    result_.program = &program;
  }

  Invocation Run() {
    TakeAll();
    Finish();
    return std::move(result_);
  }

  Beginning RunBeginning() {
    try {
      TakeAll();
    } catch (const Failure&) {
      // What was understood before counts.
    }
    return {std::move(result_), pending_, std::move(first_), onlyWords_};
  }

 private:
  void TakeAll() {
    while (!rest_.empty()) {
      const std::string_view word = Take();
      if (onlyWords_ || !IsOption(word)) {
        AddWord(word);
      } else if (word == "--") {
        onlyWords_ = true;
      } else if (word.starts_with("--")) {
        AddLong(word.substr(2));
      } else {
        AddLetters(word.substr(1));
      }
    }
  }

  std::string_view Take() {
    const std::string_view word = rest_.front();
    rest_ = rest_.subspan(1);
    return word;
  }

  void AddWord(std::string_view word) {
    if (result_.verb != nullptr) {
      result_.words.emplace_back(word);
      return;
    }
    ChooseVerb(word);
  }

  bool Choose(std::string_view name) {
    result_.verb = FindVerb(program_.verbs, name);
    result_.byAlias = result_.verb != nullptr && result_.verb->name != name;
    return result_.verb != nullptr;
  }

  // Tries the verb of two words (`wifi name`) before the verb of one word.
  void ChooseVerb(std::string_view word) {
    if (!rest_.empty()) {
      const std::string both = std::string(word) + " " + rest_.front();
      if (Choose(both)) {
        Take();
        return;
      }
    }
    if (Choose(word)) return;
    if (rest_.empty()) first_ = word;
    throw UnknownVerb(word);
  }

  Failure UnknownVerb(std::string_view word) const {
    std::string second;
    for (const Verb& verb : program_.verbs) {
      if (!verb.name.starts_with(std::string(word) + " ")) continue;
      second += (second.empty() ? "" : ", ") + std::string(verb.name.substr(word.size() + 1));
    }
    const std::string name(word);
    if (!second.empty()) return Usage(Command(name) + " needs one of these after it: " + second + ".");
    const std::string_view near = NearestVerb(program_.verbs, word);
    const std::string advice =
        near.empty() ? Command("help") + " lists all" : "did you mean `" + std::string(near) + "`?";
    return Usage("There is no command \"" + Printable(name) + "\"; " + advice + (near.empty() ? "." : ""));
  }

  const Option& Known(const Option* common, const Option* own, std::string_view shown) const {
    if (common != nullptr) return *common;
    if (own != nullptr) return *own;
    throw Usage("There is no " + (HidesWords() ? "such option" : "option " + Printable(shown)) + Of() + Help());
  }

  std::span<const Option> Own() const {
    return result_.verb == nullptr ? std::span<const Option>() : result_.verb->options;
  }
  // "`kelva get`"
  std::string Command(std::string_view words) const {
    return "`" + std::string(program_.name) + " " + std::string(words) + "`";
  }
  bool HidesWords() const { return result_.verb != nullptr && result_.verb->mayMeetSecrets; }
  std::string Of() const { return result_.verb == nullptr ? "" : " of " + Command(result_.verb->name); }
  std::string Help() const {
    const std::string name = result_.verb == nullptr ? "" : " " + std::string(result_.verb->name);
    return "; " + Command("help" + name) + " shows how it is used.";
  }

  void AddLong(std::string_view text) {
    if (text == "version" && result_.verb == nullptr) {
      result_.version = true;
      return;
    }
    const std::size_t equals = text.find('=');
    const std::string_view name = text.substr(0, equals);
    const std::string shown = "--" + std::string(name);
    const Option& option = Known(FindOption(program_.options, name), FindOption(Own(), name), shown);
    if (equals != std::string_view::npos) {
      if (option.value.empty()) throw Usage(shown + " takes no value" + Help());
      result_.Add(option.name, std::string(text.substr(equals + 1)));
      return;
    }
    AddSeparate(option, shown);
  }

  void AddLetters(std::string_view letters) {
    while (!letters.empty()) {
      const std::string shown = std::string("-") + letters[0];
      const Option& option = Known(FindLetter(program_.options, letters[0]), FindLetter(Own(), letters[0]), shown);
      letters.remove_prefix(1);
      if (option.value.empty() || letters.empty()) {
        AddSeparate(option, shown);
        continue;
      }
      result_.Add(option.name, std::string(letters));
      return;
    }
  }

  // The option as it stands; its value, if it takes one, is the next word.
  void AddSeparate(const Option& option, const std::string& shown) {
    if (option.value.empty()) {
      result_.Add(option.name, "");
      return;
    }
    if (rest_.empty()) pending_ = &option;
    if (rest_.empty()) throw Usage(shown + " needs a value, " + std::string(option.value) + Help());
    result_.Add(option.name, std::string(Take()));
  }

  void Finish() const {
    if (result_.Has("help") || result_.version) return;
    if (result_.verb == nullptr) throw Usage("No command was given; " + Command("help") + " lists all.");
    CheckCount();
    for (const Option& option : result_.verb->options) {
      if (option.needed && !result_.Has(option.name)) {
        throw Needs("--" + std::string(option.name) + " " + std::string(option.value));
      }
    }
  }

  // "one FOLDER", "FILE and PATH"
  std::string Wanted() const {
    std::string names;
    for (const Argument& argument : result_.verb->arguments) {
      names += (names.empty() ? "" : " and ") + std::string(argument.name);
    }
    return names.empty() ? "no words" : result_.verb->arguments.size() == 1 ? "one " + names : names;
  }

  Failure Needs(std::string_view what) const {
    return Usage(Command(result_.verb->name) + " needs " + std::string(what) + Help());
  }

  void CheckCount() const {
    std::size_t least = 0;
    std::size_t most = 0;
    for (const Argument& argument : result_.verb->arguments) {
      if (argument.count != Argument::Count::kOptional && result_.words.size() <= least) {
        throw Needs(argument.name);
      }
      least += argument.count == Argument::Count::kOptional ? 0 : 1;
      most = argument.count == Argument::Count::kOneOrMore ? static_cast<std::size_t>(-1) : most + 1;
      if (most == static_cast<std::size_t>(-1)) return;
    }
    if (result_.words.size() > most) {
      const std::string extra = HidesWords() ? "what was given" : "\"" + Printable(result_.words[most]) + "\"";
      throw Usage(Command(result_.Name()) + " takes " + Wanted() + "; " + extra + " is one too many.");
    }
  }

  const Program& program_;
  std::span<const char* const> rest_;
  bool onlyWords_ = false;
  const Option* pending_ = nullptr;
  std::string first_;
  Invocation result_;
};

}  // namespace

std::string_view Invocation::Name() const {
  if (verb == nullptr) return {};
  return byAlias ? verb->alias : verb->name;
}

bool Invocation::Has(std::string_view option) const {
  return Value(option).has_value();
}

std::optional<std::string> Invocation::Value(std::string_view option) const {
  std::optional<std::string> last;
  for (const auto& [name, value] : options_) {
    if (name == option) last = value;
  }
  return last;
}

std::vector<std::string> Invocation::Values(std::string_view option) const {
  std::vector<std::string> all;
  for (const auto& [name, value] : options_) {
    if (name == option) all.push_back(value);
  }
  return all;
}

Invocation Parse(const Program& program, std::span<const char* const> arguments) {
  return Parser(program, arguments).Run();
}

Beginning ParseBeginning(const Program& program, std::span<const char* const> arguments) {
  return Parser(program, arguments).RunBeginning();
}

const Verb* FindVerb(std::span<const Verb> table, std::string_view name) {
  for (const Verb& verb : table) {
    if (verb.name == name || (!verb.alias.empty() && verb.alias == name)) return &verb;
  }
  return nullptr;
}

std::chrono::milliseconds ParseSeconds(std::string_view text, std::string_view option, Zero zero) {
  const std::optional<double> seconds = ParseDecimal(text);
  if (!seconds || *seconds < 0 || (*seconds == 0 && zero == Zero::kRefused) || *seconds > 1e9) {
    throw Usage(std::string(option) + " needs a number of seconds" + (zero == Zero::kRefused ? " above 0" : "") +
                ", not \"" + Printable(text) + "\".");
  }
  return std::chrono::milliseconds(static_cast<long long>(std::ceil(*seconds * 1000)));
}

long long ParseNumber(std::string_view text, std::string_view what, long long least, long long most) {
  long long number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number < least || number > most) {
    throw Usage("\"" + Printable(text) + "\" is not " + std::string(what) + " (a whole number from " +
                std::to_string(least) + " to " + std::to_string(most) + ").");
  }
  return number;
}

}  // namespace apps
