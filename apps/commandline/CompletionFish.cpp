#include <algorithm>

#include "apps/commandline/Completion.h"

namespace apps {
namespace {

// fish knows two escapes inside single quotes.
std::string FishQuoted(std::string_view text) {
  std::string out = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') out += '\\';
    out += c;
  }
  return out + "'";
}

std::string Action(Offer offer, std::string_view words) {
  switch (offer) {
    case Offer::kFile:
      return " -r -F";
    case Offer::kFolder:
      return " -x -a '(__fish_complete_directories)'";
    case Offer::kWords:
      return " -x -a " + FishQuoted(words);
    case Offer::kVerb:
      return " -x -a '(__kelva_verbs)'";
    case Offer::kSerial:
    case Offer::kNothing:
      break;
  }
  return " -x";
}

// True after the words of this command, and not after those of a longer one: "pictures", not "pictures rm".
std::string Seen(std::span<const Verb> table, const Verb& verb) {
  std::string condition;
  for (std::string_view rest = verb.name; !rest.empty();) {
    const std::size_t end = std::min(rest.find(' '), rest.size());
    condition +=
        (condition.empty() ? "" : "; and ") + ("__fish_seen_subcommand_from " + std::string(rest.substr(0, end)));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  std::string longer;
  for (const std::string_view second : SecondWords(table, verb.name)) longer += " " + std::string(second);
  return longer.empty() ? condition : condition + "; and not __fish_seen_subcommand_from" + longer;
}

std::string OptionLine(const Option& option, const std::string& condition) {
  std::string line = "complete -c kelva";
  if (!condition.empty()) line += " -n " + FishQuoted(condition);
  if (option.letter != 0) line += std::string(" -s ") + option.letter;
  line += " -l " + std::string(option.name);
  if (option.name == "serial") {
    line += " -x -a '(__kelva_serials)'";
  } else if (!option.value.empty()) {
    line += Action(option.offer, option.words);
  }
  return line + " -d " + FishQuoted(option.help) + "\n";
}

std::string VerbLines(std::span<const Verb> table, const Verb& verb) {
  std::string text;
  const std::size_t blank = verb.name.find(' ');
  if (blank == std::string_view::npos) {
    text += "complete -c kelva -n __fish_use_subcommand -f -a " + FishQuoted(verb.name) + " -d " +
            FishQuoted(verb.summary) + "\n";
  } else {
    const std::string first(verb.name.substr(0, blank));
    text += "complete -c kelva -n '__fish_seen_subcommand_from " + first + "' -f -a " +
            FishQuoted(verb.name.substr(blank + 1)) + " -d " + FishQuoted(verb.summary) + "\n";
    const auto own =
        std::find_if(table.begin(), table.end(), [&first](const Verb& other) { return other.name == first; });
    if (own == table.end() && SecondWords(table, first).front() == verb.name.substr(blank + 1)) {
      text += "complete -c kelva -n __fish_use_subcommand -f -a " + FishQuoted(first) + " -d 'Several commands'\n";
    }
  }
  for (const Option& option : verb.options) text += OptionLine(option, Seen(table, verb));
  for (const Argument& argument : verb.arguments) {
    if (argument.offer == Offer::kNothing) continue;
    text += "complete -c kelva -n " + FishQuoted(Seen(table, verb)) + Action(argument.offer, argument.words) + "\n";
  }
  return text;
}

}  // namespace

std::string FishCompletion(const Program& program) {
  const std::span<const Verb> table = program.verbs;
  std::string text = "# fish completion for kelva; made from its table of commands\n\n";
  text += "function __kelva_serials\n    kelva list 2>/dev/null | sed -n '2,$s/ .*//p'\nend\n\n";
  text += "function __kelva_verbs\n    printf '%s\\n'";
  for (const std::string_view first : FirstWords(table)) text += " " + std::string(first);
  text += "\nend\n\ncomplete -c kelva -f\n";
  for (const Option& option : program.options) text += OptionLine(option, "");
  for (const Verb& verb : table) text += VerbLines(table, verb);
  return text;
}

}  // namespace apps
