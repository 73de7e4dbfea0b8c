#ifndef KELVA_APPS_DESKTOP_DAY_LAYOUT_H_
#define KELVA_APPS_DESKTOP_DAY_LAYOUT_H_

#include <QDate>
#include <QRect>
#include <functional>
#include <optional>
#include <vector>

namespace desktop {

/// Where pictures stand in a grid with a headline above each run of pictures of one day. Knows numbers alone: pictures are 0 to
/// Count() - 1, in an order that never changes. A picture whose day is not known yet stands with the one before it, so that
/// little moves when its day arrives.
class DayLayout {
 public:
  struct Measures {
    int width = 0;
    int cellWidth = 1;  ///< the least; cells grow until a line is full
    int captionHeight = 0;
    int headlineHeight = 0;
    int margin = 0;
  };
  struct Section {
    int first = 0;
    int count = 0;
    int top = 0;                 ///< of the headline
    std::optional<QDate> day{};  ///< nothing while no day is known; an invalid one for pictures without a time
  };

  /// `dayOf` says the day of a picture, an invalid one where it has none, and nothing while it is not known.
  void Arrange(const Measures& measures, int count, const std::function<std::optional<QDate>(int)>& dayOf);

  int Height() const { return height_; }
  int Columns() const { return columns_; }
  int Count() const { return sections_.empty() ? 0 : sections_.back().first + sections_.back().count; }
  const std::vector<Section>& Sections() const { return sections_; }
  QRect HeadlineOf(const Section& section) const;
  QRect RectOf(int picture) const;
  /// The picture at a place, or -1.
  int At(QPoint place) const;
  /// The first picture of the line at a height or below it, and one behind the last of the line at another height.
  int FirstFrom(int top) const;
  int EndBefore(int bottom) const;
  /// The picture that is so many lines below (above, when negative), in the same column as far as there is one.
  int LinesFrom(int picture, int lines) const;

 private:
  const Section& SectionOf(int picture) const;
  int LinesOf(const Section& section) const { return (section.count + columns_ - 1) / columns_; }
  void BeginSections(int count, const std::function<std::optional<QDate>(int)>& dayOf);

  Measures measures_;
  std::vector<Section> sections_;
  int columns_ = 1;
  int cellWidth_ = 1;
  int cellHeight_ = 1;
  int height_ = 0;
};

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_DAY_LAYOUT_H_
