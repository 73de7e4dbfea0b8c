// The verbs that explain a program: help, manual and completion. All of them print what the program's table says.
#include <filesystem>
#include <fstream>
#include <string>

#include "apps/commandline/Completion.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Help.h"
#include "apps/commandline/ManPage.h"
#include "apps/commandline/Printable.h"

namespace apps {
namespace {

// The words of the command line as the name of a verb; empty when there are none.
std::string NameInWords(const Context& context) {
  std::string name;
  for (const std::string& word : context.call.words) name += (name.empty() ? "" : " ") + word;
  return name;
}

const Verb& Named(const Program& program, const std::string& name) {
  if (const Verb* verb = FindVerb(program.verbs, name)) return *verb;
  throw Failure(ExitCode::kUsage,
                "There is no command \"" + Printable(name) + "\"; `" + std::string(program.name) + " help` lists all.");
}

ExitCode Print(Context& context, const std::string& text) {
  return context.Result(Json::Object().Set("text", text), text);
}

ExitCode RunHelp(Context& context) {
  const Program& program = *context.call.program;
  const std::string name = NameInWords(context);
  return Print(context, name.empty() ? Overview(program) : HelpFor(program, Named(program, name)));
}

void StorePage(const std::filesystem::path& folder, const std::string& name, const std::string& page) {
  const std::filesystem::path path = folder / (name + ".1");
  std::ofstream file(path, std::ios::binary);
  file << page;
  file.close();
  if (!file) throw Failure(ExitCode::kFailed, "Cannot write " + Printable(path.string()) + "; choose another folder.");
}

ExitCode StoreAllPages(Context& context, const std::string& path) {
  const Program& program = *context.call.program;
  std::error_code error;
  std::filesystem::create_directories(path, error);
  if (error) throw SystemFailure("create " + Printable(path), error.value());
  StorePage(path, std::string(program.name), ManPageOf(program));
  for (const Verb& verb : program.verbs) StorePage(path, ManName(program, verb), ManPageOfVerb(program, verb));
  return context.Result(Json::Object().SetBytes("folder", path).Set("files", program.verbs.size() + 1), "");
}

ExitCode RunManual(Context& context) {
  if (const auto into = context.call.Value("into")) return StoreAllPages(context, *into);
  const Program& program = *context.call.program;
  const std::string name = NameInWords(context);
  return Print(context, name.empty() ? ManPageOf(program) : ManPageOfVerb(program, Named(program, name)));
}

ExitCode RunCompletion(Context& context) {
  const std::string& shell = context.call.words[0];
  const auto script = Completion(*context.call.program, shell);
  if (!script) {
    throw Failure(ExitCode::kUsage,
                  "There are completions for bash, zsh and fish, not for \"" + Printable(shell) + "\".");
  }
  return Print(context, *script);
}

constexpr Argument kCommand[] = {{"COMMAND", "The command to explain.", Argument::Count::kOptional, Offer::kVerb},
                                 {"WORD", "Its second word, if it has one.", Argument::Count::kOptional}};
constexpr Argument kShell[] = {{"SHELL", "bash, zsh or fish.", Argument::Count::kOne, Offer::kWords, kShells}};
constexpr Example kCompletionExamples[] = {
    {"source <(PROGRAM completion bash)", "Completions in this shell; packages install them for all."}};
constexpr Option kManualOptions[] = {
    {"into", 'd', "FOLDER", "Write all pages into this folder instead.", Offer::kFolder}};
constexpr Example kManualExamples[] = {{"PROGRAM manual help | man -l -", "Read a page that is not installed."}};
constexpr Example kHelpExamples[] = {
    {"PROGRAM help manual", "Say how one command is used; without a command, list all."}};

constexpr std::string_view kTextMember = "text: what is printed without --json";

constexpr Verb kVerbs[] = {
    {"completion", "Print a completion script for a shell", kShell, kNoOptions,
     "The shell then offers commands, options and the serial numbers of the cameras that are attached.", kTextMember,
     kCompletionExamples, RunCompletion},
    {"manual", "Print a manual page", kCommand, kManualOptions,
     "Prints the page of the program or of one command in troff form. Packages install all of them.",
     "text: the page\nfolder: where all pages were written, with --into\nfiles: how many", kManualExamples, RunManual},
    {"help", "Say how the commands are used", kCommand, kNoOptions, "The same as COMMAND --help.", kTextMember,
     kHelpExamples, RunHelp},
};

}  // namespace

std::span<const Verb> HelpVerbs() {
  return kVerbs;
}

}  // namespace apps
