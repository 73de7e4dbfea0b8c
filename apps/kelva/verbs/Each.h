#ifndef KELVA_APPS_KELVA_VERBS_EACH_H_
#define KELVA_APPS_KELVA_VERBS_EACH_H_

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "apps/camera/Explain.h"
#include "apps/commandline/Context.h"

namespace apps {

/// Does the same for several files: one that fails is reported, and the rest goes on. A camera that has gone, or a
/// request to stop, ends the whole.
class Each {
 public:
  /// `member` is the name of the array of outcomes in JSON style.
  Each(Context& context, std::string_view member) : context_(context), member_(member) {}

  /// Runs `work`, which gives the members of its outcome, for the file named `path`.
  void Try(const std::string& path, const std::function<Json()>& work);
  /// Gives the result and the exit status of the whole: done, partial, or that of the failure when nothing succeeded.
  /// `text` stands for the result where it is not JSON.
  ExitCode Finish(Json result, std::string_view text = "");

  int Done() const { return done_; }
  int Failed() const { return failed_; }

 private:
  Context& context_;
  std::string_view member_;
  Json outcomes_ = Json::Array();
  std::optional<ExitCode> firstFailure_;
  int done_ = 0;
  int failed_ = 0;
};

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_EACH_H_
