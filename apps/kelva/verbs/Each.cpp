// Does the same for several files and reports each failure.
#include "apps/kelva/verbs/Each.h"

#include <utility>

namespace apps {

void Each::Try(const std::string& path, const std::function<Json()>& work) {
  try {
    outcomes_.Push(work());
    ++done_;
  } catch (const std::exception& error) {
    const Outcome outcome = Explain(error, context_);
    // A camera that has gone answers nothing more.
    if (outcome.code == ExitCode::kGone) throw;
    context_.reporter.Error(outcome.sentence, outcome.code);
    Json members = Json::Object().SetBytes("path", path).Set("reason", WordOf(outcome.code));
    outcomes_.Push(members.Set("error", outcome.sentence));
    if (!firstFailure_) firstFailure_ = outcome.code;
    ++failed_;
  }
}

ExitCode Each::Finish(Json result, std::string_view text) {
  const ExitCode code = failed_ == 0 ? ExitCode::kDone : done_ == 0 ? *firstFailure_ : ExitCode::kPartial;
  result.Set(member_, std::move(outcomes_)).Set("failed", failed_);
  return context_.Result(std::move(result), text, code);
}

}  // namespace apps
