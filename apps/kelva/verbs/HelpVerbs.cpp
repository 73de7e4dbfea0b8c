#include "apps/kelva/verbs/HelpVerbs.h"

#include <string>

#include "apps/commandline/Completion.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Help.h"
#include "apps/commandline/ManPage.h"
#include "apps/commandline/Printable.h"
#include "apps/files/StoreFile.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

// The words of the command line as the name of a verb; empty when there are none.
std::string NameInWords(const Context& context) {
  std::string name;
  for (const std::string& word : context.call.words) name += (name.empty() ? "" : " ") + word;
  return name;
}

const Verb& Named(const std::string& name) {
  if (const Verb* verb = FindVerb(AllVerbs(), name)) return *verb;
  throw Failure(ExitCode::kUsage, "There is no command \"" + Printable(name) + "\"; `kelva help` lists all.");
}

ExitCode Print(Context& context, const std::string& text) {
  context.Result(Json::Object().Set("text", text), text);
  return ExitCode::kDone;
}

ExitCode RunHelp(Context& context) {
  const std::string name = NameInWords(context);
  return Print(context, name.empty() ? Overview(AllVerbs()) : HelpFor(Named(name)));
}

void StorePage(const TargetFolder& folder, const std::string& name, const std::string& page) {
  StoreReplacing(folder, name + ".1", page);
}

ExitCode StoreAllPages(Context& context, const std::string& path) {
  const TargetFolder folder = TargetFolder::OpenOrMake(path);
  StorePage(folder, "kelva", ManPageOfTool(AllVerbs(), KELVA_VERSION));
  for (const Verb& verb : AllVerbs()) StorePage(folder, ManName(verb), ManPageOfVerb(verb, KELVA_VERSION));
  Json members = Json::Object();
  context.Result(std::move(members.SetBytes("folder", path).Set("files", AllVerbs().size() + 1)), "");
  return ExitCode::kDone;
}

ExitCode RunManual(Context& context) {
  if (const auto into = context.call.Value("into")) return StoreAllPages(context, *into);
  const std::string name = NameInWords(context);
  return Print(context,
               name.empty() ? ManPageOfTool(AllVerbs(), KELVA_VERSION) : ManPageOfVerb(Named(name), KELVA_VERSION));
}

ExitCode RunCompletion(Context& context) {
  const std::string& shell = context.call.words[0];
  const auto script = Completion(AllVerbs(), shell);
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
    {"source <(kelva completion bash)", "Completions in this shell; packages install them for all."}};
constexpr Option kManualOptions[] = {
    {"into", 'd', "FOLDER", "Write all pages into this folder instead.", Offer::kFolder}};
constexpr Example kManualExamples[] = {{"kelva manual get | man -l -", "Read a page that is not installed."}};

constexpr Example kHelpExamples[] = {
    {"kelva help wifi name", "Say how one command is used; without a command, list all."}};

constexpr std::string_view kTextMember = "text: what is printed without --json";

constexpr Verb kVerbs[] = {
    {"completion",
     "Print a completion script for a shell",
     kShell,
     {},
     "The script is made from the same table as --help and the manual pages, and offers the serial numbers of the "
     "cameras "
     "that are attached.",
     kTextMember,
     kCompletionExamples,
     RunCompletion},
    {"manual", "Print a manual page", kCommand, kManualOptions,
     "Prints the page of the tool or of one command in troff form; packages install them all.",
     "text: the page\nfolder: where all pages were written, with --into\nfiles: how many", kManualExamples, RunManual},
    {"help",
     "Say how the commands are used",
     kCommand,
     {},
     "The same as COMMAND --help.",
     kTextMember,
     kHelpExamples,
     RunHelp},
};

}  // namespace

bool NeedsNoCamera(const Verb& verb) {
  return FindVerb(kVerbs, verb.name) != nullptr;
}

std::span<const Verb> HelpVerbs() {
  return kVerbs;
}

}  // namespace apps
