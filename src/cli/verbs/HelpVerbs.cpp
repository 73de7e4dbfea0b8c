#include <string>

#include "frame/Context.h"
#include "frame/Failure.h"
#include "frame/Help.h"
#include "frame/Printable.h"
#include "verbs/Verbs.h"

namespace kelva {
namespace {

ExitCode RunHelp(Context& context) {
  std::string name;
  for (const std::string& word : context.call.words) name += (name.empty() ? "" : " ") + word;
  if (name.empty()) {
    context.out.Add(Overview(AllVerbs()));
  } else if (const Verb* verb = FindVerb(AllVerbs(), name)) {
    context.out.Add(HelpFor(*verb));
  } else {
    throw Failure(ExitCode::kUsage, "There is no command \"" + Printable(name) + "\"; `kelva help` lists all.");
  }
  context.out.Flush();
  return ExitCode::kDone;
}

constexpr Argument kArguments[] = {{"COMMAND", "The command to explain.", Argument::Count::kOptional, Offer::kVerb},
                                   {"WORD", "Its second word, if it has one.", Argument::Count::kOptional}};

constexpr Verb kVerbs[] = {{"help", "Say how the commands are used", kArguments, {}, "", "", {}, RunHelp}};

}  // namespace

std::span<const Verb> HelpVerbs() {
  return kVerbs;
}

}  // namespace kelva
