// Keeps a secret that was typed at the wrong place out of messages.
#include "apps/commandline/Discretion.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "apps/commandline/Printable.h"

namespace apps {
namespace {

constexpr std::string_view kHidden = "(hidden)";
// No passphrase is as short, and a number such as "10" stands in many sentences.
constexpr std::size_t kShortest = 4;

// Whether the words of the verb's name are among the arguments, in their order.
bool Names(std::string_view verb, std::span<const char* const> arguments) {
  auto at = arguments.begin();
  while (!verb.empty()) {
    const std::string_view word = verb.substr(0, verb.find(' '));
    verb.remove_prefix(std::min(word.size() + 1, verb.size()));
    at = std::find(at, arguments.end(), word);
    if (at == arguments.end()) return false;
    ++at;
  }
  return true;
}

bool Knows(std::span<const Option> options, std::string_view name) {
  return std::any_of(options.begin(), options.end(),
                     [name](const Option& option) { return option.name == name || option.alias == name; });
}

// What of an argument a person may have chosen: all of a word, the name of an option that does not exist, a value.
void AddChosen(std::string_view argument, const Program& program, const Verb& verb, std::vector<std::string>& chosen) {
  if (argument.starts_with("--")) {
    const std::string_view name = argument.substr(2, argument.find('=') - 2);
    if (!Knows(program.options, name) && !Knows(verb.options, name)) chosen.push_back(Printable(name));
    argument.remove_prefix(std::min(name.size() + 3, argument.size()));
  } else if (argument.starts_with("-")) {
    argument.remove_prefix(std::min<std::size_t>(2, argument.size()));
  } else if (verb.name.find(argument) != std::string_view::npos) {
    return;
  }
  chosen.push_back(Printable(argument));
}

void Hide(std::string& sentence, std::string_view word) {
  for (std::size_t at = sentence.find(word); at != std::string::npos; at = sentence.find(word, at + kHidden.size())) {
    sentence.replace(at, word.size(), kHidden);
  }
}

}  // namespace

std::string Discreet(std::string sentence, const Program& program, std::span<const char* const> arguments) {
  std::vector<std::string> chosen;
  for (const Verb& verb : program.verbs) {
    if (!verb.mayMeetSecrets || !Names(verb.name, arguments)) continue;
    for (const std::string_view argument : arguments) AddChosen(argument, program, verb, chosen);
  }
  // Longest first, so that no part of one stays behind.
  std::sort(chosen.begin(), chosen.end(), [](const auto& a, const auto& b) { return a.size() > b.size(); });
  for (const std::string& word : chosen) {
    if (word.size() >= kShortest) Hide(sentence, word);
  }
  return sentence;
}

}  // namespace apps
