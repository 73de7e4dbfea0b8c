#ifndef KELVA_APPS_KELVA_VERBS_CONSENT_H_
#define KELVA_APPS_KELVA_VERBS_CONSENT_H_

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "apps/commandline/Context.h"
#include "apps/commandline/Verb.h"

namespace apps {

/// The option that answers every question with yes.
inline constexpr Option kYesOption = {"yes", 'y', "", "Do not ask."};
/// The option that shows what would be done.
inline constexpr Option kDryRunOption = {"dry-run", 'n', "", "Change nothing; show what would be done."};

/// Things of which a question shows the first few, one a line, and how many more there are.
class FewOf {
 public:
  void Add(std::string line) {
    constexpr std::size_t kMost = 10;
    if (first_.size() < kMost) first_.push_back(std::move(line));
    ++count_;
  }
  std::size_t Count() const { return count_; }
  const std::vector<std::string>& First() const { return first_; }

 private:
  std::vector<std::string> first_;
  std::size_t count_ = 0;
};

/// What a command that changes a camera is about to do.
struct Question {
  std::string facts;      ///< a sentence, shown before the question
  std::string ask;        ///< "Send it?"
  std::string otherwise;  ///< what is true after a no: "nothing was sent"
  FewOf things = {};      ///< behind the facts
};

/// Whether a question reaches somebody: standard input is a terminal, and --yes is not given.
bool CanAsk(const Context& context);
/// Shows the facts and asks; returns after "yes". Other programs may use the camera meanwhile, and change what is on it. Throws Failure after any other answer.
void Ask(Context& context, const Question& question);
/// As Ask on a terminal. Elsewhere, and with --yes, the command line is consent enough, and nothing is shown.
void AskOnTerminal(Context& context, const Question& question);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_CONSENT_H_
