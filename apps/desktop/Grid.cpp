// The grid of pictures below headlines of days.
#include "apps/desktop/Grid.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

#include "apps/desktop/PictureDelegate.h"

namespace desktop {
namespace {

constexpr int kMargin = 12;
// In lines of text, so that a larger font has larger pictures.
constexpr int kCellLines = 12;
// Thumbnails come one after another: days that arrive together move the pictures once.
constexpr int kCalmMs = 120;
constexpr int kAskMs = 15;

}  // namespace

Grid::Grid(CameraModel& pictures, QWidget* parent) : QListView(parent), pictures_(pictures) {
  setModel(&pictures);
  setItemDelegate(new PictureDelegate(this));
  setSelectionMode(ExtendedSelection);
  setVerticalScrollMode(ScrollPerPixel);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFrameShape(NoFrame);
  setMouseTracking(true);
  setAccessibleName(tr("Pictures on the camera"));
  relayout_.setSingleShot(true);
  ask_.setSingleShot(true);
  connect(&relayout_, &QTimer::timeout, this, [this] { doItemsLayout(); });
  connect(&ask_, &QTimer::timeout, this, [this] { AskForMissing(); });
  connect(this, &QListView::activated, this, [this](const QModelIndex& index) { onOpen(index.row()); });
}

// What must not move when the layout changes: the current picture while it is in view, otherwise what stands first there.
int Grid::Anchor() const {
  const QModelIndex current = currentIndex();
  const bool isThere = current.isValid() && current.row() < layout_.Count();
  if (isThere && visualRect(current).intersects(viewport()->rect())) return current.row();
  return layout_.FirstFrom(verticalOffset());
}

void Grid::doItemsLayout() {
  const int anchor = Anchor();
  const int before = layout_.RectOf(anchor).top();
  const int line = fontMetrics().height();
  layout_.Arrange({viewport()->width(), kCellLines * line, line * 2, line * 5 / 2, kMargin}, pictures_.rowCount(),
                  [this](int row) -> std::optional<QDate> {
                    const Picture& picture = pictures_.At(row);
                    return picture.asked ? std::optional(picture.taken.date()) : std::nullopt;
                  });
  const int moved = verticalOffset() > 0 ? layout_.RectOf(anchor).top() - before : 0;
  QAbstractItemView::doItemsLayout();  // NOLINT(bugprone-parent-virtual-call): a list arranges rows of its own
  if (moved != 0) verticalScrollBar()->setValue(verticalScrollBar()->value() + moved);
  ask_.start(kAskMs);
}

// At once: what is drawn next must not be a picture that went.
void Grid::reset() {
  QListView::reset();
  asked_.clear();
  doItemsLayout();
}

int Grid::verticalOffset() const {
  return verticalScrollBar()->value();
}

QModelIndex Grid::IndexOf(int row) const {
  return row < 0 ? QModelIndex() : pictures_.index(row);
}

QRect Grid::visualRect(const QModelIndex& index) const {
  return index.isValid() ? layout_.RectOf(index.row()).translated(0, -verticalOffset()) : QRect();
}

QModelIndex Grid::indexAt(const QPoint& place) const {
  return IndexOf(layout_.At(place + QPoint(0, verticalOffset())));
}

void Grid::scrollTo(const QModelIndex& index, ScrollHint) {
  const QRect rect = visualRect(index);
  if (!rect.isValid()) return;
  // The first line is shown with its headline.
  const int top = index.row() < layout_.Columns() ? -verticalOffset() : rect.top();
  int by = std::min(0, top);
  if (rect.bottom() > viewport()->height()) by = std::min(rect.bottom() - viewport()->height() + kMargin, rect.top());
  verticalScrollBar()->setValue(verticalOffset() + by);
}

QModelIndex Grid::moveCursor(CursorAction action, Qt::KeyboardModifiers) {
  const int count = pictures_.rowCount();
  if (count == 0) return {};
  if (!currentIndex().isValid()) return IndexOf(0);
  const int row = currentIndex().row();
  const int page = std::max(1, viewport()->height() / std::max(1, layout_.RectOf(row).height()) - 1);
  switch (action) {
    case MoveLeft:
    case MovePrevious:
      return IndexOf(std::max(0, row - 1));
    case MoveRight:
    case MoveNext:
      return IndexOf(std::min(count - 1, row + 1));
    case MoveUp:
      return IndexOf(layout_.LinesFrom(row, -1));
    case MoveDown:
      return IndexOf(layout_.LinesFrom(row, 1));
    case MovePageUp:
      return IndexOf(layout_.LinesFrom(row, -page));
    case MovePageDown:
      return IndexOf(layout_.LinesFrom(row, page));
    case MoveHome:
      return IndexOf(0);
    case MoveEnd:
      return IndexOf(count - 1);
  }
  return {};
}

int Grid::RowNear(QPoint place) const {
  place.ry() += verticalOffset();
  const int at = layout_.At(place);
  return at >= 0 ? at : std::min(layout_.FirstFrom(place.y()), pictures_.rowCount() - 1);
}

// A frame that is drawn with the mouse takes what it touches; Shift takes all from one picture to another.
void Grid::setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) {
  QItemSelection chosen;
  if (state() == DragSelectingState) {
    const QRect frame = rect.normalized().translated(0, verticalOffset());
    for (int row = layout_.FirstFrom(frame.top()); row < layout_.EndBefore(frame.bottom()); ++row) {
      if (layout_.RectOf(row).intersects(frame)) chosen.select(IndexOf(row), IndexOf(row));
    }
  } else if (pictures_.rowCount() > 0) {
    const int start = RowNear(rect.topLeft());
    const int other = RowNear({rect.x() + rect.width() - 1, rect.y() + rect.height() - 1});
    chosen.select(IndexOf(std::min(start, other)), IndexOf(std::max(start, other)));
  }
  selectionModel()->select(chosen, command);
}

QRegion Grid::visualRegionForSelection(const QItemSelection&) const {
  return viewport()->rect();
}

QModelIndexList Grid::selectedIndexes() const {
  return selectionModel()->selectedIndexes();
}

QList<int> Grid::Chosen() const {
  QList<int> rows;
  for (const QModelIndex& index : selectedIndexes()) rows.append(index.row());
  std::sort(rows.begin(), rows.end());
  return rows;
}

void Grid::scrollContentsBy(int dx, int dy) {
  scrollDirtyRegion(dx, dy);
  viewport()->scroll(dx, dy);
  ask_.start(kAskMs);
}

void Grid::updateGeometries() {
  verticalScrollBar()->setRange(0, std::max(0, layout_.Height() - viewport()->height()));
  verticalScrollBar()->setPageStep(viewport()->height());
  verticalScrollBar()->setSingleStep(fontMetrics().height() * 3);
}

void Grid::resizeEvent(QResizeEvent* event) {
  QAbstractItemView::resizeEvent(event);  // NOLINT(bugprone-parent-virtual-call): a list arranges rows of its own
  doItemsLayout();
}

void Grid::rowsInserted(const QModelIndex&, int, int) {
  scheduleDelayedItemsLayout();
}

void Grid::dataChanged(const QModelIndex& from, const QModelIndex& to, const QList<int>& roles) {
  QAbstractItemView::dataChanged(from, to, roles);  // NOLINT(bugprone-parent-virtual-call): as above
  if (roles.contains(CameraModel::kThumbnail)) {
    asked_.remove(from.row());
    if (!relayout_.isActive()) relayout_.start(kCalmMs);
  }
  if (from != to) viewport()->update();
}

void Grid::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier && currentIndex().isValid()) {
    return onOpen(currentIndex().row());
  }
  if (event->key() == Qt::Key_Escape && selectionModel()->hasSelection()) return clearSelection();
  QListView::keyPressEvent(event);
}

void Grid::AskForMissing() {
  const int top = verticalOffset();
  const int height = viewport()->height();
  QList<int> missing;
  const auto add = [&](int from, int to) {
    for (int row = from; row < to; ++row) {
      if (pictures_.Lacks(row)) missing.append(row);
    }
  };
  const int first = layout_.FirstFrom(top);
  add(first, layout_.EndBefore(top + 2 * height));
  add(layout_.FirstFrom(top - height), first);
  // What was asked for and still comes is no reason to ask again.
  if (std::all_of(missing.begin(), missing.end(), [this](int row) { return asked_.contains(row); })) return;
  asked_ = QSet<int>(missing.begin(), missing.end());
  onWanted(missing);
}

QString Grid::HeadlineOf(const DayLayout::Section& section) const {
  if (!section.day) return pictures_.At(section.first).folder;
  if (section.day->isValid()) return QLocale().toString(*section.day, QLocale::LongFormat);
  return tr("%1, without a date").arg(pictures_.At(section.first).folder);
}

void Grid::PaintHeadline(QPainter& painter, const DayLayout::Section& section) const {
  QFont font = painter.font();
  font.setBold(true);
  painter.save();
  painter.setFont(font);
  painter.setPen(palette().color(QPalette::Text));
  const QRect place = layout_.HeadlineOf(section).translated(kMargin / 2, -verticalOffset() - kMargin / 2);
  painter.drawText(place, Qt::AlignLeft | Qt::AlignBottom, HeadlineOf(section));
  painter.restore();
}

void Grid::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  const QRect dirty = event->rect();
  for (const DayLayout::Section& section : layout_.Sections()) {
    if (layout_.HeadlineOf(section).translated(0, -verticalOffset()).intersects(dirty)) PaintHeadline(painter, section);
  }
  QStyleOptionViewItem option;
  initViewItemOption(&option);
  const int end = layout_.EndBefore(dirty.bottom() + verticalOffset());
  for (int row = layout_.FirstFrom(dirty.top() + verticalOffset()); row < end; ++row) {
    const QModelIndex index = IndexOf(row);
    option.rect = visualRect(index);
    if (!option.rect.intersects(dirty)) continue;
    option.state.setFlag(QStyle::State_Selected, selectionModel()->isSelected(index));
    option.state.setFlag(QStyle::State_HasFocus, hasFocus() && index == currentIndex());
    itemDelegate()->paint(&painter, option, index);
  }
}

}  // namespace desktop
