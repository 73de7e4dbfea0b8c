// Places pictures in lines below headlines of days.
#include "apps/desktop/DayLayout.h"

#include <algorithm>

namespace desktop {

void DayLayout::Arrange(const Measures& measures, int count, const std::function<std::optional<QDate>(int)>& dayOf) {
  measures_ = measures;
  const int usable = std::max(measures.width - 2 * measures.margin, measures.cellWidth);
  columns_ = usable / measures.cellWidth;
  cellWidth_ = usable / columns_;
  cellHeight_ = cellWidth_ * 3 / 4 + measures.captionHeight;
  BeginSections(count, dayOf);
  int top = 0;
  for (Section& section : sections_) {
    section.top = top;
    top += measures.headlineHeight + LinesOf(section) * cellHeight_;
  }
  height_ = count == 0 ? 0 : top + measures.margin;
}

void DayLayout::BeginSections(int count, const std::function<std::optional<QDate>(int)>& dayOf) {
  sections_.clear();
  for (int picture = 0; picture < count; ++picture) {
    const std::optional<QDate> day = dayOf(picture);
    if (sections_.empty()) sections_.push_back({picture, 0, 0, day});
    if (!sections_.back().day) sections_.back().day = day;
    if (day && *day != *sections_.back().day) sections_.push_back({picture, 0, 0, day});
    ++sections_.back().count;
  }
}

QRect DayLayout::HeadlineOf(const Section& section) const {
  return {measures_.margin, section.top, cellWidth_ * columns_, measures_.headlineHeight};
}

const DayLayout::Section& DayLayout::SectionOf(int picture) const {
  const auto behind = std::upper_bound(sections_.begin(), sections_.end(), picture,
                                       [](int wanted, const Section& section) { return wanted < section.first; });
  return *std::prev(behind);
}

QRect DayLayout::RectOf(int picture) const {
  if (picture < 0 || picture >= Count()) return {};
  const Section& section = SectionOf(picture);
  const int place = picture - section.first;
  return {measures_.margin + place % columns_ * cellWidth_,
          section.top + measures_.headlineHeight + place / columns_ * cellHeight_, cellWidth_, cellHeight_};
}

int DayLayout::At(QPoint place) const {
  for (int picture = FirstFrom(place.y()); picture < EndBefore(place.y()); ++picture) {
    if (RectOf(picture).contains(place)) return picture;
  }
  return -1;
}

int DayLayout::FirstFrom(int top) const {
  for (const Section& section : sections_) {
    const int lines = LinesOf(section);
    const int line = std::max(0, (top - section.top - measures_.headlineHeight) / cellHeight_);
    if (line < lines) return section.first + line * columns_;
  }
  return Count();
}

int DayLayout::EndBefore(int bottom) const {
  int end = 0;
  for (const Section& section : sections_) {
    const int inside = bottom - section.top - measures_.headlineHeight;
    if (inside < 0) break;
    end = section.first + std::min(section.count, (inside / cellHeight_ + 1) * columns_);
  }
  return end;
}

int DayLayout::LinesFrom(int picture, int lines) const {
  if (Count() == 0) return -1;
  const int step = lines < 0 ? -1 : 1;
  const int column = RectOf(picture).x();
  for (; lines != 0; lines -= step) {
    const Section& section = SectionOf(picture);
    const int line = (picture - section.first) / columns_;
    const int next = step < 0 ? section.first + line * columns_ - 1 : section.first + (line + 1) * columns_;
    const int other = step > 0 ? std::min(next, section.first + section.count) : next;
    if (other < 0 || other >= Count()) break;
    picture = other;  // the end of the line above, or the beginning of the one below
    while (RectOf(picture).x() > column) --picture;
    while (RectOf(picture).x() < column && picture + 1 < Count() &&
           RectOf(picture + 1).top() == RectOf(picture).top()) {
      ++picture;
    }
  }
  return picture;
}

}  // namespace desktop
