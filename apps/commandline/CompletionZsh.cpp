#include <algorithm>

#include "apps/commandline/Completion.h"

namespace apps {
namespace {

// Text inside an _arguments or _describe specification: brackets and colons have a meaning there.
std::string Plain(std::string_view text) {
  std::string out;
  for (const char c : text) {
    if (c == '[' || c == ']' || c == ':' || c == '\\') out += '\\';
    out += c;
  }
  return out;
}

std::string Action(Offer offer, std::string_view words) {
  switch (offer) {
    case Offer::kFile:
      return "_files";
    case Offer::kFolder:
      return "_files -/";
    case Offer::kWords:
      return "(" + std::string(words) + ")";
    case Offer::kVerb:
      return "_kelva_verbs";
    case Offer::kSerial:
    case Offer::kNothing:
      break;
  }
  return " ";
}

std::string OptionSpec(const Option& option, std::string_view name) {
  std::string spec = "*" + std::string(name) + "[" + Plain(option.help) + "]";
  if (option.value.empty()) return spec;
  const std::string action = option.name == "serial" ? "_kelva_serials" : Action(option.offer, option.words);
  return spec + ":" + Plain(option.value) + ":" + action;
}

std::string OptionSpecs(std::span<const Option> options) {
  std::string text;
  for (const Option& option : options) {
    text += " \\\n        " + Quoted(OptionSpec(option, "--" + std::string(option.name)));
    if (option.letter != 0) text += " \\\n        " + Quoted(OptionSpec(option, std::string("-") + option.letter));
  }
  return text;
}

std::string ArgumentSpecs(const Verb& verb) {
  std::string text;
  for (const Argument& argument : verb.arguments) {
    const std::string star = argument.count == Argument::Count::kOneOrMore ? "*" : "";
    const std::string colon = argument.count == Argument::Count::kOptional ? "::" : ":";
    text +=
        " \\\n        " + Quoted(star + colon + Plain(argument.name) + ":" + Action(argument.offer, argument.words));
  }
  return text;
}

std::string VerbCase(const Program& program, const Verb& verb) {
  return "    " + Quoted(verb.name) + ")\n      _arguments -s" + OptionSpecs(program.options) +
         OptionSpecs(verb.options) + ArgumentSpecs(verb) + "\n      ;;\n";
}

std::string Described(std::span<const Verb> table) {
  std::string text;
  for (const std::string_view first : FirstWords(table)) {
    const auto own = std::find_if(table.begin(), table.end(), [first](const Verb& verb) { return verb.name == first; });
    const std::string_view summary = own == table.end() ? "Several commands" : own->summary;
    text += "    " + Quoted(std::string(first) + ":" + Plain(summary)) + "\n";
  }
  return text;
}

std::string SecondWordCases(std::span<const Verb> table) {
  std::string text;
  for (const std::string_view first : FirstWords(table)) {
    const auto seconds = SecondWords(table, first);
    if (seconds.empty()) continue;
    text += "    " + std::string(first) + ") seconds=(";
    for (const std::string_view second : seconds) text += (text.ends_with('(') ? "" : " ") + std::string(second);
    text += ") ;;\n";
  }
  return text;
}

}  // namespace

std::string ZshCompletion(const Program& program) {
  const std::span<const Verb> table = program.verbs;
  std::string text = "#compdef kelva\n# zsh completion for kelva; made from its table of commands\n\n";
  text +=
      "_kelva_verbs() {\n  local -a verbs\n  verbs=(\n" + Described(table) + "  )\n  _describe command verbs\n}\n\n";
  text +=
      "_kelva_serials() {\n  local -a serials\n  serials=(${(f)\"$(kelva list 2>/dev/null | sed -n '2,$s/ "
      ".*//p')\"})\n";
  text += "  compadd -a serials\n}\n\n";
  text += "_kelva() {\n  local -a seconds\n  local verb\n";
  text += "  if (( CURRENT == 2 )); then\n    [[ $words[2] == -* ]] && _arguments" + OptionSpecs(program.options) +
          "\n    [[ $words[2] == -* ]] || _kelva_verbs\n    return\n  fi\n";
  text += "  verb=$words[2]\n  case $verb in\n" + SecondWordCases(table) + "  esac\n";
  text += "  if (( $#seconds )); then\n    if (( CURRENT == 3 )); then\n      compadd -a seconds\n";
  text +=
      "    elif (( ${seconds[(Ie)$words[3]]} )); then\n      verb=\"$verb $words[3]\"\n      shift words\n      (( "
      "CURRENT-- ))\n    fi\n  fi\n";
  text += "  shift words\n  (( CURRENT-- ))\n  case $verb in\n";
  for (const Verb& verb : table) text += VerbCase(program, verb);
  text += "  esac\n}\n\n";
  // Found in $fpath, this file is the body of _kelva when it is first called; read with `source`, it is not.
  return text + "if [[ $funcstack[1] == _kelva ]]; then\n  _kelva \"$@\"\nelse\n  compdef _kelva kelva\nfi\n";
}

}  // namespace apps
