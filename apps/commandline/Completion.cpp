// Completions: three small scripts, all of which ask the program itself what may come next.
#include "apps/commandline/Completion.h"

#include <algorithm>
#include <vector>

#include "apps/commandline/Parse.h"

namespace apps {
namespace {

// %q quotes a name so that the shell that runs the line reads one word. That does not work inside quotes which are
// still open, so only names that need no quoting are offered there.
constexpr std::string_view kBash =
    R"(# bash completion for PROGRAM, which says itself what may come next. Nothing that it says is evaluated.
_PROGRAM() {
  local word quoted
  COMPREPLY=()
  while IFS= read -r word; do
    case $word in
      :files) compopt -o default ;;
      :folders) compopt -o dirnames ;;
      *)
        printf -v quoted %q "$word"
        [[ $word != */ ]] || compopt -o nospace
        [[ ${COMP_WORDS[COMP_CWORD]} == [\"\']* && $quoted != "$word" ]] || COMPREPLY+=("$quoted")
        ;;
    esac
  done < <(PROGRAM __complete bash "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -o nosort -F _PROGRAM PROGRAM
)";

// zsh runs a file found in $fpath as the body of _PROGRAM at its first call, but not one read with `source`.
constexpr std::string_view kZsh = R"(#compdef PROGRAM
# zsh completion for PROGRAM, which says itself what may come next. Nothing that it says is evaluated.
_PROGRAM() {
  local name meaning
  local -a names shown begun
  while IFS=$'\t' read -r name meaning; do
    case $name in
      :files) _files ;;
      :folders) _files -/ ;;
      */) begun+=("$name") ;;
      *) names+=("$name") shown+=("$name${meaning:+ -- $meaning}") ;;
    esac
  done < <(PROGRAM __complete zsh "${(@Q)words[2,CURRENT-1]}" "$PREFIX" 2>/dev/null)
  compadd -l -d shown -a names
  compadd -S '' -a begun
}
if [[ $funcstack[1] == _PROGRAM ]]; then
  _PROGRAM "$@"
else
  compdef _PROGRAM PROGRAM
fi
)";

constexpr std::string_view kFish =
    R"(# fish completion for PROGRAM, which says itself what may come next. Nothing that it says is evaluated.
function __PROGRAM_complete
    set -l words (commandline -opc)
    set -l current (commandline -ct)
    for line in (PROGRAM __complete fish $words[2..] "$current" 2>/dev/null)
        switch $line
            case :files
                __fish_complete_path "$current"
            case :folders
                __fish_complete_directories "$current"
            case '*'
                printf '%s\n' $line
        end
    end
end
complete -c PROGRAM -f -a '(__PROGRAM_complete)'
)";

constexpr std::string_view kFiles = ":files\n";
constexpr std::string_view kFolders = ":folders\n";

// Names with control characters are left out: they would split a line, and nobody can type them.
bool IsPlain(std::string_view name) {
  return !name.empty() &&
         std::none_of(name.begin(), name.end(), [](char c) { return (c >= '\0' && c < ' ') || c == '\x7f'; });
}

class Completer {
 public:
  Completer(const Program& program, std::string_view shell, std::vector<std::string> words)
      : program_(program), bash_(shell == "bash"), last_(std::move(words.back())) {
    words.pop_back();
    std::vector<const char*> before;
    before.reserve(words.size());
    for (const std::string& word : words) before.push_back(word.c_str());
    begun_ = ParseBeginning(program, before);
  }

  std::string Run() {
    if (begun_.pending != nullptr) {
      AddOffer(begun_.pending->offer, begun_.pending->words);
    } else if (!begun_.onlyWords && last_.starts_with('-')) {
      AddOptions();
    } else if (begun_.call.verb == nullptr) {
      begun_.first.empty() ? AddFirstWords() : AddSecondWords(begun_.first);
    } else {
      if (begun_.call.words.empty()) AddSecondWords(begun_.call.verb->name);
      AddArgument();
    }
    return std::move(text_);
  }

 private:
  // bash offers every word that it is given. zsh and fish choose among them, as the user has set them up. But fish's
  // loose matching would turn an unknown option into another one, and fish expands a leading tilde.
  void Add(std::string_view name, std::string_view meaning = {}) {
    const std::string whole = prefix_ + std::string(name);
    const bool chosenHere = bash_ || last_.starts_with('-');
    if (!IsPlain(whole) || whole.starts_with('~') || (chosenHere && !whole.starts_with(last_))) return;
    text_ += whole;
    if (!bash_ && !meaning.empty()) text_ += "\t" + std::string(meaning);
    text_ += "\n";
  }

  void AddOffer(Offer offer, std::string_view words) {
    if (offer == Offer::kFile) text_ += kFiles;
    if (offer == Offer::kFolder) text_ += kFolders;
    if (offer == Offer::kWords) AddEach(words);
    if (offer == Offer::kVerb) AddFirstWords();
    if (offer == Offer::kSerial && program_.serials != nullptr) {
      for (const std::string& serial : program_.serials(begun_.call)) Add(serial);
    }
    const bool isOnCamera = offer == Offer::kCameraPath || offer == Offer::kPicture || offer == Offer::kPictureFolder;
    if (isOnCamera) AddCameraWords(offer);
  }

  // An option's name would not be taken for a path, and a backslash separates.
  void AddCameraWords(Offer offer) {
    if (program_.cameraWords == nullptr) return;
    for (const std::string& word : program_.cameraWords(begun_.call, offer, Unquoted(last_))) {
      if (!word.starts_with('-') && word.find('\\') == std::string::npos) Add(word);
    }
  }

  void AddEach(std::string_view words) {
    while (!words.empty()) {
      const std::size_t end = std::min(words.find(' '), words.size());
      Add(words.substr(0, end));
      words.remove_prefix(std::min(end + 1, words.size()));
    }
  }

  // The options, or after "--serial=" the values.
  void AddOptions() {
    const std::size_t equals = last_.find('=');
    for (const Option& option : program_.options) AddOption(option, equals);
    if (begun_.call.verb == nullptr) return;
    for (const Option& option : begun_.call.verb->options) AddOption(option, equals);
  }

  void AddOption(const Option& option, std::size_t equals) {
    const std::string name = "--" + std::string(option.name);
    if (equals == std::string::npos) return Add(name, option.help);
    if (option.value.empty() || name != std::string_view(last_).substr(0, equals)) return;
    prefix_ = name + "=";
    AddOffer(option.offer, option.words);
  }

  void AddArgument() {
    const std::span<const Argument> arguments = begun_.call.verb->arguments;
    if (arguments.empty()) return;
    const std::size_t at = begun_.call.words.size();
    const bool repeats = arguments.back().count == Argument::Count::kOneOrMore;
    if (at >= arguments.size() && !repeats) return;
    const Argument& argument = arguments[std::min(at, arguments.size() - 1)];
    AddOffer(argument.offer, argument.words);
  }

  void AddFirstWords() {
    std::vector<std::string_view> seen;
    for (const Verb& verb : program_.verbs) {
      const std::string_view first = verb.name.substr(0, verb.name.find(' '));
      if (std::find(seen.begin(), seen.end(), first) != seen.end()) continue;
      seen.push_back(first);
      Add(first, first == verb.name ? verb.summary : "Several commands");
    }
  }

  void AddSecondWords(std::string_view first) {
    const std::string start = std::string(first) + " ";
    for (const Verb& verb : program_.verbs) {
      if (verb.name.starts_with(start)) Add(verb.name.substr(start.size()), verb.summary);
    }
  }

  const Program& program_;
  bool bash_;
  std::string last_;
  std::string prefix_;  // what stands before each value: "--serial=", or nothing
  Beginning begun_;
  std::string text_;
};

// bash splits "--serial=K1" into three words; the parser also takes the option and its value as two. It also splits
// "I:/DCIM", of which it wants the part behind the colon completed: a path without a drive is on the same one.
std::vector<std::string> WordsOfBash(std::span<const char* const> words) {
  std::vector<std::string> unquoted;
  bool sign = false;
  bool drive = false;
  for (const std::string_view word : words) {
    sign = word == "=" && !unquoted.empty() && unquoted.back().starts_with("--");
    drive = word == ":" && !unquoted.empty() && unquoted.back().size() == 1;
    if (drive) unquoted.pop_back();
    if (!sign && !drive) unquoted.push_back(Unquoted(word));
  }
  if (sign) unquoted.emplace_back();      // the cursor stands behind the sign
  if (drive) unquoted.emplace_back("/");  // or behind the colon
  return unquoted;
}

}  // namespace

std::optional<std::string> Completion(const Program& program, std::string_view shell) {
  std::string script(shell == "bash" ? kBash : shell == "zsh" ? kZsh : shell == "fish" ? kFish : "");
  if (script.empty()) return std::nullopt;
  constexpr std::string_view kPlace = "PROGRAM";
  for (std::size_t at = 0; (at = script.find(kPlace, at)) != std::string::npos; at += program.name.size()) {
    script.replace(at, kPlace.size(), program.name);
  }
  return script;
}

std::string Offers(const Program& program, std::string_view shell, std::span<const char* const> words) {
  std::vector<std::string> understood(words.begin(), words.end());
  if (shell == "bash") understood = WordsOfBash(words);
  if (understood.empty()) understood.emplace_back();
  return Completer(program, shell, std::move(understood)).Run();
}

std::string Unquoted(std::string_view word) {
  std::string out;
  char quote = '\0';
  for (std::size_t i = 0; i < word.size(); ++i) {
    const char c = word[i];
    if (quote == '\0' && (c == '"' || c == '\'')) {
      quote = c;
    } else if (c == quote && quote != '\0') {
      quote = '\0';
    } else if (c == '\\' && quote != '\'' && i + 1 < word.size()) {
      out += word[++i];
    } else {
      out += c;
    }
  }
  return out;
}

}  // namespace apps
