#include "apps/commandline/Completion.h"

#include <algorithm>

namespace apps {

std::optional<std::string> Completion(const Program& program, std::string_view shell) {
  if (shell == "bash") return BashCompletion(program);
  if (shell == "zsh") return ZshCompletion(program);
  if (shell == "fish") return FishCompletion(program);
  return std::nullopt;
}

std::string Quoted(std::string_view text) {
  std::string out = "'";
  for (const char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}

std::vector<std::string_view> FirstWords(std::span<const Verb> table) {
  std::vector<std::string_view> words;
  for (const Verb& verb : table) {
    const std::string_view first = verb.name.substr(0, verb.name.find(' '));
    if (std::find(words.begin(), words.end(), first) == words.end()) words.push_back(first);
  }
  return words;
}

std::vector<std::string_view> SecondWords(std::span<const Verb> table, std::string_view first) {
  std::vector<std::string_view> words;
  for (const Verb& verb : table) {
    const bool belongs =
        verb.name.size() > first.size() && verb.name.starts_with(first) && verb.name[first.size()] == ' ';
    if (belongs) words.push_back(verb.name.substr(first.size() + 1));
  }
  return words;
}

}  // namespace apps
