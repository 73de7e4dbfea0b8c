#include "apps/commandline/ManPage.h"

#include <algorithm>

#include "apps/commandline/Help.h"

namespace apps {
namespace {

std::string Upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return text;
}

std::string Title(const std::string& name, std::string_view version) {
  return ".TH " + Upper(Troff(name)) + " 1 \"\" \"kelva " + std::string(version) + "\" \"Kelva manual\"\n";
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

std::string Examples(const Verb& verb) {
  std::string text;
  for (const Example& example : verb.examples) text += Item(Troff(example.command), example.meaning);
  return text;
}

std::string JsonMembers(const Verb& verb) {
  std::string text;
  for (std::string_view rest = verb.json; !rest.empty();) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    const std::string_view line = rest.substr(0, end);
    const std::size_t colon = std::min(line.find(": "), line.size());
    text += Item(Troff(line.substr(0, colon)), line.substr(std::min(colon + 2, line.size())));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return text;
}

std::string ExitStatus() {
  std::string text;
  for (const ExitCodeRow& row : kExitCodes) {
    const std::string head = std::to_string(static_cast<int>(row.code)) + " (" + std::string(row.word) + ")";
    text += Item(Troff(head), row.meaning);
  }
  return text;
}

std::string Environment() {
  return Item("KELVA_SERIAL", "The camera to use when --serial is not given.") +
         Item("NO_COLOR", "Set to anything: no colours.") + Item("TERM", "With \"dumb\", no progress bars either.");
}

constexpr std::string_view kDescription =
    "kelva does with a Kelva camera everything that the camera can do. Each command opens the camera, does its work "
    "and "
    "closes it again.\n\n"
    "Results go to standard output, messages and progress to standard error. With --json the result is one JSON "
    "document "
    "(commands that report events give one object a line), whose form is stable and carries the number of its schema; "
    "the "
    "text form is for people and may change. Names and texts from a camera are shown with \\xNN in place of bytes that "
    "a "
    "terminal would obey.\n\n"
    "With one camera attached no choice is needed. With several, --serial or KELVA_SERIAL chooses; a number that is "
    "not "
    "attached is an error, and never another camera.";

}  // namespace

std::string Troff(std::string_view text) {
  std::string out;
  bool lineStart = true;
  for (const char c : text) {
    if (lineStart && (c == '.' || c == '\'')) out += "\\&";
    switch (c) {
      case '\\':
        out += "\\e";
        break;
      case '-':
        out += "\\-";
        break;
      case '~':
        out += "\\(ti";
        break;
      case '^':
        out += "\\(ha";
        break;
      case '`':
        out += "\\(ga";
        break;
      case '\'':
        out += "\\(aq";
        break;
      default:
        out += c;
    }
    lineStart = c == '\n';
  }
  return out;
}

std::string ManName(const Verb& verb) {
  std::string name = "kelva-" + std::string(verb.name);
  std::replace(name.begin(), name.end(), ' ', '-');
  return name;
}

std::string ManPageOfVerb(const Verb& verb, std::string_view version) {
  const std::string name = ManName(verb);
  return Title(name, version) + Section("NAME", Troff(name + " - ") + Troff(verb.summary) + "\n") +
         Section("SYNOPSIS", ".B " + Troff(UsageLine(verb)) + "\n") + Section("DESCRIPTION", Paragraphs(verb.details)) +
         Section("ARGUMENTS", Arguments(verb)) +
         Section("OPTIONS", Options(verb.options) + ".PP\nThe options of every command are in\n.BR kelva (1).\n") +
         Section("JSON RESULT", JsonMembers(verb)) + Section("EXAMPLES", Examples(verb)) +
         Section("EXIT STATUS", "See\n.BR kelva (1).\n") + Section("SEE ALSO", ".BR kelva (1)\n");
}

std::string ManPageOfTool(std::span<const Verb> table, std::string_view version) {
  std::string commands;
  for (const Verb& verb : table) commands += ".TP\n.BR " + Troff(ManName(verb)) + " (1)\n" + Troff(verb.summary) + "\n";
  return Title("kelva", version) + Section("NAME", "kelva \\- everything that a Kelva camera can do\n") +
         Section("SYNOPSIS", ".B kelva COMMAND [OPTIONS] [WORDS]\n") +
         Section("DESCRIPTION", Paragraphs(kDescription)) + Section("COMMANDS", commands) +
         Section("OPTIONS", Options(CommonOptions())) + Section("EXIT STATUS", ExitStatus()) +
         Section("ENVIRONMENT", Environment());
}

}  // namespace apps
