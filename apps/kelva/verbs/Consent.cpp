// Asks the person at the terminal before something on a camera changes for good.
#include "apps/kelva/verbs/Consent.h"

#include <unistd.h>

#include <functional>
#include <utility>

#include "apps/camera/Turns.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/SoFar.h"

namespace apps {
namespace {

// Who ends the command at a question gets the answer "no".
class AtQuestion {
 public:
  AtQuestion(SoFar* soFar, const std::string& otherwise) : soFar_(soFar) {
    if (soFar_ == nullptr) return;
    Json members = soFar_->Ask().value_or(SoFar::Done{"", Json::Object()}).members;
    before_ = soFar_->Tell([otherwise, members = std::move(members)] { return SoFar::Done{otherwise, members}; });
  }
  ~AtQuestion() {
    if (soFar_ != nullptr) soFar_->Tell(std::move(before_));
  }
  AtQuestion(const AtQuestion&) = delete;
  AtQuestion& operator=(const AtQuestion&) = delete;

 private:
  SoFar* const soFar_;
  std::function<SoFar::Done()> before_;
};

}  // namespace

bool CanAsk(const Context& context) {
  return !context.call.Has("yes") && ::isatty(STDIN_FILENO) == 1;
}

void Ask(Context& context, const Question& question) {
  const AtQuestion end(context.soFar, question.otherwise);
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
