// Does the same for several files and reports each failure.
#include "apps/kelva/verbs/Each.h"

#include <utility>

#include "apps/commandline/Words.h"

namespace apps {
namespace {

Json ArrayOf(const std::vector<Json>& outcomes) {
  Json array = Json::Array();
  for (const Json& outcome : outcomes) array.Push(outcome);
  return array;
}

}  // namespace

Each::Each(Context& context, std::string_view member, Json named) : context_(context), member_(member) {
  TellAtEnd([named = std::move(named)] { return SoFar::Done{"", named}; });
}

void Each::TellAtEnd(std::function<SoFar::Done()> start) const {
  if (context_.soFar == nullptr) return;
  context_.soFar->Tell([start = std::move(start), member = std::string(member_), outcomes = outcomes_] {
    SoFar::Done done = start();
    const std::scoped_lock lock(outcomes->mutex);
    done.members.Set(member, ArrayOf(outcomes->all)).Set("failed", outcomes->failed);
    return done;
  });
}

void Each::Add(Json outcome) {
  const std::scoped_lock lock(outcomes_->mutex);
  outcomes_->all.push_back(std::move(outcome));
}

Json Each::FailureOf(const std::string& path, const std::exception& error) {
  const Outcome outcome = Explain(error, context_);
  // A camera that has gone answers nothing more.
  if (outcome.code == ExitCode::kGone) throw;
  context_.reporter.Error(outcome.sentence, outcome.code);
  if (!firstFailure_) firstFailure_ = outcome.code;
  Json members = Json::Object().SetBytes("path", path).Set("reason", WordOf(outcome.code));
  return std::move(members.Set("error", outcome.sentence));
}

void Each::Try(const std::string& path, const std::function<Json()>& work) {
  try {
    Add(work());
    ++done_;
  } catch (const std::exception& error) {
    Json failed = FailureOf(path, error);
    const std::scoped_lock lock(outcomes_->mutex);
    outcomes_->all.push_back(std::move(failed));
    ++outcomes_->failed;
  }
}

void Each::TryUnchecked(const std::string& path, const std::function<Json()>& work) {
  const int before = done_;
  Try(path, work);
  if (done_ != before) unchecked_.emplace_back(outcomes_->all.size() - 1, path);
}

void Each::Check(const std::function<void(const std::string& path)>& check) {
  for (const auto& [place, path] : std::exchange(unchecked_, {})) {
    try {
      check(path);
    } catch (const std::exception& error) {
      Json failed = FailureOf(path, error);
      const std::scoped_lock lock(outcomes_->mutex);
      outcomes_->all[place] = std::move(failed);
      ++outcomes_->failed;
      --done_;
    }
  }
}

ExitCode Each::Finish(Json result, std::string_view text, std::optional<ExitCode> ended) {
  const ExitCode tried = Failed() == 0 ? ExitCode::kDone : done_ == 0 ? *firstFailure_ : ExitCode::kPartial;
  const ExitCode code = ended.value_or(tried);
  std::vector<Json> all;
  {
    const std::scoped_lock lock(outcomes_->mutex);
    std::swap(all, outcomes_->all);
  }
  result.Set(member_, ArrayOf(all)).Set("failed", Failed());
  return context_.Result(std::move(result), text, code);
}

ExitCode Each::FinishDry(Json result, std::string_view what) {
  result.Set("dry_run", true);
  const ExitCode code = Finish(std::move(result));
  context_.reporter.Note(Counted(static_cast<unsigned>(done_), what) + " would be deleted; nothing was.");
  return code;
}

}  // namespace apps
