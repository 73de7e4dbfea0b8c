// Asks the person at the terminal before something on a camera changes for good.
#include "apps/kelva/verbs/Consent.h"

#include <unistd.h>

#include "apps/camera/Turns.h"
#include "apps/commandline/Failure.h"

namespace apps {

bool CanAsk(const Context& context) {
  return !context.call.Has("yes") && ::isatty(STDIN_FILENO) == 1;
}

void Ask(Context& context, const Question& question) {
  context.reporter.Ask(question.facts);
  const FewOf& things = question.things;
  for (const std::string& line : things.First()) context.reporter.Ask("  " + line);
  if (const std::size_t more = things.Count() - things.First().size(); more != 0) {
    context.reporter.Ask("  and " + std::to_string(more) + " more");
  }
  context.reporter.Ask(question.ask + " Type yes and press Enter:");
  WithoutCamera(context, [&] {
    std::string answer;
    for (char c = 0; ::read(STDIN_FILENO, &c, 1) == 1 && c != '\n';) answer += c;
    if (answer != "yes") throw Failure(ExitCode::kFailed, "The answer was not yes; " + question.otherwise + ".");
  });
}

void AskOnTerminal(Context& context, const Question& question) {
  if (CanAsk(context)) Ask(context, question);
}

}  // namespace apps
