// Writes the manual pages in troff from the table of verbs.
#include "apps/commandline/ManPage.h"

#include <algorithm>
#include <array>

#include "apps/commandline/Help.h"
#include "base/Ascii.h"

namespace apps {
namespace {

std::string Title(const Program& program, const std::string& name) {
  const std::string source = std::string(program.name) + " " + std::string(program.version);
  return ".TH " + base::Upper(Troff(name)) + " 1 \"\" \"" + Troff(source) + "\" \"Kelva manual\"\n";
}

std::string Section(std::string_view title, const std::string& body) {
  return body.empty() ? "" : ".SH " + std::string(title) + "\n" + body;
}

std::string Paragraphs(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find("\n\n"), text.size());
    out += (out.empty() ? "" : ".PP\n") + Troff(text.substr(0, end)) + "\n";
    text.remove_prefix(std::min(end + 2, text.size()));
  }
  return out;
}

std::string Item(const std::string& head, std::string_view body) {
  return ".TP\n.B " + head + "\n" + Troff(body) + "\n";
}

std::string Options(std::span<const Option> options) {
  std::string text;
  for (const Option& option : options) {
    std::string head = OptionHead(option);
    head.erase(0, head.find_first_not_of(' '));
    text += Item(Troff(head), option.help);
  }
  return text;
}

std::string Arguments(const Verb& verb) {
  std::string text;
  for (const Argument& argument : verb.arguments) text += Item(Troff(argument.name), argument.help);
  return text;
}

std::string Examples(const Program& program, const Verb& verb) {
  std::string text;
  for (const Example& example : verb.examples) text += Item(Troff(CommandOf(program, example)), example.meaning);
  return text;
}

// Without the blanks that begin a line: troff would break the paragraph there.
std::string Joined(std::string_view text) {
  std::string out;
  for (const char c : text) {
    if (c != ' ' || !out.ends_with('\n')) out += c;
  }
  return out;
}

// "name: meaning" a line; a line that begins with a blank goes on with the meaning before it.
std::string JsonMembers(const Verb& verb) {
  std::string text;
  for (std::string_view rest = verb.json; !rest.empty();) {
    std::size_t end = rest.find('\n');
    while (end < rest.size() - 1 && rest[end + 1] == ' ') end = rest.find('\n', end + 1);
    end = std::min(end, rest.size());
    const std::string_view line = rest.substr(0, end);
    const std::size_t colon = std::min(line.find(": "), line.size());
    text += Item(Troff(line.substr(0, colon)), Joined(line.substr(std::min(colon + 2, line.size()))));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return text;
}

std::string ExitStatus(const Program& program) {
  std::string text;
  for (const ExitCodeRow& row : program.exitCodes) {
    const std::string head = std::to_string(static_cast<int>(row.code)) + " (" + std::string(row.word) + ")";
    text += Item(Troff(head), row.meaning);
  }
  return text;
}

std::string Environment(const Program& program) {
  std::string text;
  for (const Variable& variable : program.environment) text += Item(Troff(variable.name), variable.meaning);
  return text;
}

}  // namespace

std::string Troff(std::string_view text) {
  constexpr std::string_view kSpecial = "\\-~^`'";
  constexpr std::array<std::string_view, kSpecial.size()> kEscapes = {"e", "-", "(ti", "(ha", "(ga", "(aq"};
  std::string out;
  bool lineStart = true;
  for (const char c : text) {
    if (lineStart && (c == '.' || c == '\'')) out += "\\&";
    const std::size_t at = kSpecial.find(c);
    out += at == std::string_view::npos ? std::string(1, c) : "\\" + std::string(kEscapes[at]);
    lineStart = c == '\n';
  }
  return out;
}

std::string ManName(const Program& program, const Verb& verb) {
  std::string name = std::string(program.name) + "-" + std::string(verb.name);
  std::replace(name.begin(), name.end(), ' ', '-');
  return name;
}

std::string ManPageOfVerb(const Program& program, const Verb& verb) {
  const std::string name = ManName(program, verb);
  const std::string page = ".BR " + Troff(program.name) + " (1)";
  return Title(program, name) + Section("NAME", Troff(name + " - ") + Troff(verb.summary) + "\n") +
         Section("SYNOPSIS", ".B " + Troff(UsageLine(program, verb)) + "\n") +
         Section("DESCRIPTION", Paragraphs(verb.details)) + Section("ARGUMENTS", Arguments(verb)) +
         Section("OPTIONS", Options(verb.options) + ".PP\nThe options of every command are in\n" + page + ".\n") +
         Section("JSON RESULT", JsonMembers(verb)) + Section("EXAMPLES", Examples(program, verb)) +
         Section("EXIT STATUS", "See\n" + page + ".\n") + Section("SEE ALSO", page + "\n");
}

std::string ManPageOf(const Program& program) {
  const std::string name = Troff(program.name);
  std::string commands;
  for (const Verb& verb : program.verbs) {
    commands += ".TP\n.BR " + Troff(ManName(program, verb)) + " (1)\n" + Troff(verb.summary) + "\n";
  }
  return Title(program, std::string(program.name)) + Section("NAME", name + " \\- " + Troff(program.summary) + "\n") +
         Section("SYNOPSIS", ".B " + name + " COMMAND [OPTIONS] [WORDS]\n") +
         Section("DESCRIPTION", Paragraphs(program.description)) + Section("COMMANDS", commands) +
         Section("OPTIONS", Options(program.options)) + Section("EXIT STATUS", ExitStatus(program)) +
         Section("ENVIRONMENT", Environment(program));
}

}  // namespace apps
