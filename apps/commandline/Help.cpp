// Lays out --help for a terminal of 80 columns.
#include "apps/commandline/Help.h"

#include <algorithm>
#include <vector>

#include "apps/commandline/Printable.h"

namespace apps {
namespace {

std::string OneParagraph(std::string_view text, std::size_t indent, std::size_t width) {
  const std::string margin(indent, ' ');
  std::string out = margin;
  std::size_t column = indent;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of(" \n"), text.size());
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (column > indent && column + 1 + Width(word) > width) {
      out += "\n" + margin;
      column = indent;
    } else if (column > indent) {
      out += ' ';
      ++column;
    }
    out += word;
    column += Width(word);
  }
  return out + "\n";
}

// "  HEAD      text", the text in a column of its own, below the head when that is too long.
std::string Entry(const std::string& head, std::string_view text, std::size_t column) {
  const std::string body = Wrapped(text, column);
  if (head.size() + 4 > column) return "  " + head + "\n" + body;
  return "  " + head + body.substr(head.size() + 2);
}

std::string OptionList(std::span<const Option> options) {
  std::string text;
  for (const Option& option : options) text += Entry(OptionHead(option), option.help, 26);
  return text;
}

std::string ArgumentList(const Verb& verb) {
  std::string text;
  for (const Argument& argument : verb.arguments) text += Entry(std::string(argument.name), argument.help, 26);
  return text;
}

std::string ExampleList(const Program& program, const Verb& verb) {
  std::string text;
  for (const Example& example : verb.examples) {
    text += "  " + CommandOf(program, example) + "\n" + Wrapped(example.meaning, 6);
  }
  return text;
}

}  // namespace

std::string Wrapped(std::string_view text, std::size_t indent, std::size_t width) {
  std::string out;
  while (true) {
    const std::size_t end = text.find("\n\n");
    out += OneParagraph(text.substr(0, end), indent, width);
    if (end == std::string_view::npos) return out;
    out += "\n";
    text.remove_prefix(end + 2);
  }
}

std::string CommandOf(const Program& program, const Example& example) {
  constexpr std::string_view kPlace = "PROGRAM";
  std::string command(example.command);
  const std::size_t at = command.find(kPlace);
  return at == std::string::npos ? command : command.replace(at, kPlace.size(), program.name);
}

std::string UsageLine(const Program& program, const Verb& verb) {
  std::string line = std::string(program.name) + " " + std::string(verb.name);
  for (const Option& option : verb.options) {
    if (option.needed) line += " --" + std::string(option.name) + " " + std::string(option.value);
  }
  line += " [OPTIONS]";
  for (const Argument& argument : verb.arguments) {
    const bool optional = argument.count == Argument::Count::kOptional;
    line += (optional ? " [" : " ") + std::string(argument.name) + (optional ? "]" : "");
    if (argument.count == Argument::Count::kOneOrMore) line += "...";
  }
  return line;
}

std::string OptionHead(const Option& option) {
  std::string head = option.letter == 0 ? "    --" : std::string("-") + option.letter + ", --";
  head += option.name;
  return option.value.empty() ? head : head + " " + std::string(option.value);
}

std::string HelpFor(const Program& program, const Verb& verb) {
  std::string text = std::string(verb.summary) + ".\n\nUsage: " + UsageLine(program, verb) + "\n";
  if (!verb.details.empty()) text += "\n" + Wrapped(verb.details, 0);
  if (!verb.arguments.empty()) text += "\nArguments:\n" + ArgumentList(verb);
  if (!verb.options.empty()) text += "\nOptions:\n" + OptionList(verb.options);
  text += "\nOptions of every command:\n" + OptionList(program.options);
  if (!verb.examples.empty()) text += "\nExamples:\n" + ExampleList(program, verb);
  return text;
}

std::string Overview(const Program& program) {
  const std::string name(program.name);
  std::string text = std::string(program.summary) + ".\n\nUsage: " + name + " COMMAND [OPTIONS] [WORDS]\n\nCommands:\n";
  for (const Verb& verb : program.verbs) text += Entry(std::string(verb.name), verb.summary, 22);
  text += "\nOptions of every command:\n" + OptionList(program.options);
  return text + "\n`" + name +
         " help COMMAND` says more about one. Results go to standard output, messages to standard error.\n";
}

}  // namespace apps
