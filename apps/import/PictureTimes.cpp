// Asks the process that decodes pictures when they were taken.
#include "apps/import/PictureTimes.h"

#include <algorithm>
#include <utility>

#include "apps/camera/PictureStart.h"
#include "apps/commandline/Failure.h"

namespace apps {

void PictureTimes::Ask(const DcfObj& picture, std::span<const char> jpegFile) {
  // As many as one thread of the writers stores at once: then one exchange serves them all.
  constexpr std::size_t kMostQuestions = 32;
  const std::span<const char> start = jpegFile.first(std::min(jpegFile.size(), PictureStart::kMost));
  bool isFull = false;
  {
    const std::scoped_lock lock(mutex_);
    const bool isNew = times_.try_emplace(&picture).second;
    if (!isNew || !trouble_.empty() || start.empty()) return;
    asked_.push_back(&picture);
    questions_.Add(start);
    isFull = asked_.size() >= kMostQuestions;
  }
  if (!isFull) return;
  const std::scoped_lock lock(answering_);
  AnswerAll();
}

bool PictureTimes::WasAsked(const DcfObj& picture) const {
  const std::scoped_lock lock(mutex_);
  return times_.count(&picture) != 0;
}

bool PictureTimes::Waits(const DcfObj& picture) const {
  const std::scoped_lock lock(mutex_);
  return std::find(asked_.begin(), asked_.end(), &picture) != asked_.end();
}

std::optional<TakenTime> PictureTimes::Of(const DcfObj& picture) {
  if (WasAsked(picture)) {
    // Held while the question is on its way: whoever asks for its answer waits here.
    const std::scoped_lock lock(answering_);
    if (Waits(picture)) AnswerAll();
  }
  {
    const std::scoped_lock lock(mutex_);
    const auto found = times_.find(&picture);
    if (found != times_.end() && found->second) return found->second;
  }
  return CatalogueTaken(picture);
}

std::string PictureTimes::Trouble() const {
  const std::scoped_lock lock(mutex_);
  return trouble_;
}

void PictureTimes::AnswerAll() {
  std::vector<const DcfObj*> asked;
  onTheirWay_.Clear();
  {
    const std::scoped_lock lock(mutex_);
    asked = std::exchange(asked_, {});
    std::swap(questions_, onTheirWay_);
  }
  std::vector<std::optional<std::string>> answers;
  std::string trouble;
  try {
    answers = thumbnailer_.Times(onTheirWay_, never_);
  } catch (const Failure& failure) {
    trouble = failure.what();
  }
  const std::scoped_lock lock(mutex_);
  if (!trouble.empty()) trouble_ = trouble;
  for (std::size_t i = 0; i < answers.size(); ++i) {
    if (answers[i]) times_[asked[i]] = ParseTaken(*answers[i]);
  }
}

}  // namespace apps
