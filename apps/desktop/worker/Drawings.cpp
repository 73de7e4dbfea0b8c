// Has pictures drawn, and hands them over as they get ready.
#include "apps/desktop/worker/Drawings.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace apps {

void Drawings::Add(DrawingOf of, std::vector<char> bytes) {
  if (!pool_) pool_ = std::make_unique<ThumbnailPool>(ThumbnailPool::SizeFor(kProcesses));
  drawing_.push_back({of, of.from == DrawingOf::From::kStart   ? pool_->DrawStart(std::move(bytes))
                          : of.from == DrawingOf::From::kWhole ? pool_->Draw(std::move(bytes))
                                                               : pool_->DrawLarge(std::move(bytes))});
}

bool Drawings::Has(const DrawingOf& of) const {
  return std::any_of(drawing_.begin(), drawing_.end(), [&of](const One& one) { return one.of == of; });
}

std::optional<Drawn> Drawings::Take() {
  const auto ready = std::find_if(drawing_.begin(), drawing_.end(), [](const One& one) {
    return one.result.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
  });
  if (ready == drawing_.end()) return std::nullopt;
  One one = std::move(*ready);
  drawing_.erase(ready);
  try {
    return Drawn{one.of, one.result.get()};
  } catch (const NoThumbnail&) {
    return Drawn{.of = one.of, .needsWhole = true};
  } catch (const NoPicture& reason) {
    return Drawn{.of = one.of, .reason = reason.what()};
  }
}

}  // namespace apps
