// Does the same for several files and reports each failure.
#include "apps/kelva/verbs/Each.h"

#include <utility>

#include <utility>

namespace apps {

Each::Each(Context& context, std::string_view member, Json named) : context_(context), member_(member) {
  TellAtEnd([named = std::move(named)] { return SoFar::Done{"", named}; });
}

void Each::TellAtEnd(std::function<SoFar::Done()> start) const {
  if (context_.soFar == nullptr) return;
  context_.soFar->Tell([start = std::move(start), member = std::string(member_), outcomes = outcomes_] {
    SoFar::Done done = start();
    const std::scoped_lock lock(outcomes->mutex);
    done.members.Set(member, outcomes->all).Set("failed", outcomes->failed);
    return done;
  });
}

void Each::Add(const Json& outcome, bool failed) {
  const std::scoped_lock lock(outcomes_->mutex);
  outcomes_->all.Push(outcome);
  outcomes_->failed += failed ? 1 : 0;
}

void Each::Try(const std::string& path, const std::function<Json()>& work) {
  try {
    Add(work(), false);
    ++done_;
  } catch (const std::exception& error) {
    const Outcome outcome = Explain(error, context_);
    // A camera that has gone answers nothing more.
    if (outcome.code == ExitCode::kGone) throw;
    context_.reporter.Error(outcome.sentence, outcome.code);
    Json members = Json::Object().SetBytes("path", path).Set("reason", WordOf(outcome.code));
    Add(members.Set("error", outcome.sentence), true);
    if (!firstFailure_) firstFailure_ = outcome.code;
  }
}

ExitCode Each::Finish(Json result, std::string_view text) {
  const ExitCode code = Failed() == 0 ? ExitCode::kDone : done_ == 0 ? *firstFailure_ : ExitCode::kPartial;
  Json all = Json::Array();
  {
    const std::scoped_lock lock(outcomes_->mutex);
    std::swap(all, outcomes_->all);
  }
  result.Set(member_, std::move(all)).Set("failed", Failed());
  return context_.Result(std::move(result), text, code);
}

}  // namespace apps
