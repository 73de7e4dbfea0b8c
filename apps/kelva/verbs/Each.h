#ifndef KELVA_APPS_KELVA_VERBS_EACH_H_
#define KELVA_APPS_KELVA_VERBS_EACH_H_

#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "apps/camera/Explain.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Json.h"
#include "apps/commandline/SoFar.h"

namespace apps {

/// Does the same for several files: one that fails is reported, and the rest goes on. A camera that has gone, or a
/// request to stop, ends the whole.
class Each {
 public:
  /// `member` is the name of the array of outcomes in JSON style. When something ends the command early, its document has
  /// the outcomes until then, behind the members `named`, such as the camera's.
  Each(Context& context, std::string_view member, Json named);
  /// `start` gives what is then said and what stands in front of the outcomes, in place of `named`. As SoFar::Tell.
  void TellAtEnd(std::function<SoFar::Done()> start) const;

  /// Runs `work`, which gives the members of its outcome, for the file named `path`.
  void Try(const std::string& path, const std::function<Json()>& work);
  /// As Try, for work of which Check tells whether it succeeded.
  void TryUnchecked(const std::string& path, const std::function<Json()>& work);
  /// Runs `check`, which throws for a failure, for each file of TryUnchecked that has not failed.
  void Check(const std::function<void(const std::string& path)>& check);
  /// Gives the result and the exit status of the whole: done, partial, or that of the failure when nothing succeeded.
  /// `text` stands for the result where it is not JSON; `ended` is the status of what ended the command before its end.
  ExitCode Finish(Json result, std::string_view text = "", std::optional<ExitCode> ended = std::nullopt);

  /// As Finish, for a command that only showed what it would delete: so many of `what`, "file".
  ExitCode FinishDry(Json result, std::string_view what);

  int Done() const { return done_; }
  int Failed() const { return outcomes_->failed; }

 private:
  // Read by the thread that ends the program, too.
  struct Outcomes {
    std::mutex mutex;
    std::vector<Json> all;
    int failed = 0;
  };
  void Add(Json outcome);
  /// What to tell of a failure. Within a handler of the exception, which it throws on when it ends the whole.
  Json FailureOf(const std::string& path, const std::exception& error);

  Context& context_;
  std::string_view member_;
  const std::shared_ptr<Outcomes> outcomes_ = std::make_shared<Outcomes>();
  std::optional<ExitCode> firstFailure_;
  int done_ = 0;
  std::vector<std::pair<std::size_t, std::string>> unchecked_;  ///< place among the outcomes, and path
};

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_EACH_H_
