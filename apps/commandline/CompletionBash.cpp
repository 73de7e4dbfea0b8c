#include "apps/commandline/Completion.h"

namespace apps {
namespace {

std::string Joined(const std::vector<std::string_view>& words) {
  std::string text;
  for (const std::string_view word : words) text += (text.empty() ? "" : " ") + std::string(word);
  return text;
}

std::string OptionWords(std::span<const Option> options) {
  std::string text;
  for (const Option& option : options) {
    text += " --" + std::string(option.name);
    if (option.letter != 0) text += std::string(" -") + option.letter;
  }
  return text;
}

std::string Action(Offer offer, std::string_view words) {
  switch (offer) {
    // With nothing of ours to offer, readline itself completes names: it knows blanks, quotes and tildes.
    case Offer::kFile:
      return "compopt -o default; COMPREPLY=()";
    case Offer::kFolder:
      return "compopt -o dirnames; COMPREPLY=()";
    case Offer::kWords:
      return "COMPREPLY=($(compgen -W " + Quoted(words) + " -- \"$cur\"))";
    case Offer::kVerb:
      return "COMPREPLY=($(compgen -W \"$verbs\" -- \"$cur\"))";
    case Offer::kSerial:
    case Offer::kNothing:
      break;
  }
  return "COMPREPLY=()";
}

// "    --output|-o) ACTION; return ;;" for options that take a value.
std::string ValueCases(std::span<const Option> options, std::string_view prefix) {
  std::string text;
  for (const Option& option : options) {
    if (option.value.empty()) continue;
    text += "    " + std::string(prefix) + "--" + std::string(option.name);
    if (option.letter != 0) text += "|" + std::string(prefix) + "-" + option.letter;
    const bool serial = option.name == "serial";
    text += ") " + (serial ? "COMPREPLY=($(compgen -W \"$(_kelva_serials)\" -- \"$cur\"))"
                           : Action(option.offer, option.words));
    text += "; return ;;\n";
  }
  return text;
}

std::string VerbCase(const Verb& verb) {
  const std::string name = Quoted(verb.name);
  std::string text = "    " + name + ")\n      options=" + Quoted(OptionWords(verb.options)) + "\n";
  if (!verb.arguments.empty()) {
    text += "      argument() { " + Action(verb.arguments[0].offer, verb.arguments[0].words) + "; }\n";
  }
  return text + "      ;;\n";
}

std::string ValueCasesOfVerbs(std::span<const Verb> table) {
  std::string text;
  for (const Verb& verb : table) text += ValueCases(verb.options, Quoted(verb.name) + "' '");
  return text;
}

std::string SecondWordCases(std::span<const Verb> table) {
  std::string text;
  for (const std::string_view first : FirstWords(table)) {
    const auto seconds = SecondWords(table, first);
    if (!seconds.empty()) text += "    " + std::string(first) + ") seconds=" + Quoted(Joined(seconds)) + " ;;\n";
  }
  return text;
}

}  // namespace

std::string BashCompletion(const Program& program) {
  const std::span<const Verb> table = program.verbs;
  std::string text = "# bash completion for kelva; made from its table of commands\n\n";
  text += "_kelva_serials() { kelva list 2>/dev/null | sed -n '2,$s/ .*//p'; }\n\n";
  text += "_kelva() {\n  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}\n";
  text += "  local verbs=" + Quoted(Joined(FirstWords(table))) + "\n";
  text += "  local common=" + Quoted(OptionWords(program.options)) + "\n";
  text += "  local verb='' seconds='' options='' i word\n  COMPREPLY=()\n  argument() { COMPREPLY=(); }\n";
  text += "  for ((i = 1; i < COMP_CWORD; i++)); do\n    word=${COMP_WORDS[i]}\n";
  text += "    [[ $word == -* ]] && continue\n    if [[ -z $verb ]]; then\n";
  text += "      [[ \" $verbs \" == *\" $word \"* ]] || continue\n      verb=$word\n      case $verb in\n";
  text += SecondWordCases(table);
  text +=
      "      esac\n    elif [[ \" $seconds \" == *\" $word \"* ]]; then\n      verb=\"$verb $word\"; seconds=''\n    "
      "fi\n  done\n";
  text += "  case $prev in\n" + ValueCases(program.options, "") + "  esac\n";
  text += "  case \"$verb $prev\" in\n" + ValueCasesOfVerbs(table) + "  esac\n";
  text += "  case $verb in\n";
  for (const Verb& verb : table) text += VerbCase(verb);
  text += "  esac\n  if [[ $cur == -* ]]; then\n    COMPREPLY=($(compgen -W \"$options $common\" -- \"$cur\"))\n";
  text += "  elif [[ -z $verb ]]; then\n    COMPREPLY=($(compgen -W \"$verbs\" -- \"$cur\"))\n  else\n    argument\n";
  text += "    [[ -n $seconds ]] && COMPREPLY+=($(compgen -W \"$seconds\" -- \"$cur\"))\n  fi\n}\n";
  return text + "complete -F _kelva kelva\n";
}

}  // namespace apps
