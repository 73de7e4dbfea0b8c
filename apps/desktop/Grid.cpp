// The grid of pictures below headlines of days.
#include "apps/desktop/Grid.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <algorithm>

#include "apps/desktop/PictureDelegate.h"

namespace desktop {
namespace {

// Thumbnails come one after another: days that arrive together move the pictures once.
constexpr int kCalmMs = 120;
constexpr int kAskMs = 15;

}  // namespace

Grid::Grid(const CameraModel& pictures, QWidget* parent) : QListView(parent), pictures_(pictures), days_(pictures) {
  setModel(&days_);
  setItemDelegate(new PictureDelegate(this));
  setFlow(LeftToRight);
  setWrapping(true);
  setResizeMode(Adjust);
  setSelectionMode(ExtendedSelection);
  setSelectionRectVisible(true);
  setVerticalScrollMode(ScrollPerPixel);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFrameShape(NoFrame);
  setAccessibleName(tr("Pictures on the camera"));
  divide_.setSingleShot(true);
  ask_.setSingleShot(true);
  connect(&divide_, &QTimer::timeout, this, [this] { Divide(); });
  connect(&ask_, &QTimer::timeout, this, [this] { AskForMissing(); });
  connect(this, &QListView::activated, this,
          [this](const QModelIndex& index) { onOpen(days_.PictureAt(index.row())); });
}

// What must not move: the current picture while it is in view, otherwise what stands first there.
void Grid::Divide() {
  QPersistentModelIndex anchor = currentIndex();
  if (!visualRect(anchor).intersects(viewport()->rect())) anchor = days_.index(RowBelow(0));
  const int before = visualRect(anchor).top();
  days_.Divide();
  doItemsLayout();
  QScrollBar& bar = *verticalScrollBar();
  if (bar.value() > 0) bar.setValue(bar.value() + visualRect(anchor).top() - before);
}

void Grid::doItemsLayout() {
  QListView::doItemsLayout();
  ask_.start(kAskMs);
}

// At once: what is drawn next must not be a picture that went.
void Grid::reset() {
  QListView::reset();
  asked_.clear();
  doItemsLayout();
}

// The first line is shown with its headline.
void Grid::scrollTo(const QModelIndex& index, ScrollHint hint) {
  visualRect(index).top() == visualRect(IndexOf(0)).top() ? scrollToTop() : QListView::scrollTo(index, hint);
}

// The neighbour in reading order.
QModelIndex Grid::Beside(int row, int step) const {
  const int picture = days_.PictureAt(row) + step;
  return IndexOf(std::clamp(picture, 0, pictures_.rowCount() - 1));
}

// The nearest in the line above or below, however short that is.
QModelIndex Grid::Across(int row, int step) const {
  const QRect here = visualRect(days_.index(row));
  QModelIndex best;
  const auto distance = [&](const QModelIndex& one) { return std::abs(visualRect(one).left() - here.left()); };
  for (int next = row + step; next >= 0 && next < days_.rowCount(); next += step) {
    const QModelIndex one = days_.index(next);
    if (days_.PictureAt(next) < 0 || visualRect(one).top() == here.top()) continue;
    if (best.isValid() && visualRect(one).top() != visualRect(best).top()) break;
    if (!best.isValid() || distance(one) < distance(best)) best = one;
  }
  return best.isValid() ? best : days_.index(row);
}

QModelIndex Grid::moveCursor(CursorAction action, Qt::KeyboardModifiers) {
  if (pictures_.rowCount() == 0) return {};
  int row = currentIndex().row();
  if (row < 0 || action == MoveHome) return IndexOf(0);
  if (action == MoveEnd) return IndexOf(pictures_.rowCount() - 1);
  if (action == MoveLeft || action == MovePrevious) return Beside(row, -1);
  if (action == MoveRight || action == MoveNext) return Beside(row, 1);
  const bool isPage = action == MovePageUp || action == MovePageDown;
  const int lines = isPage ? std::max(1, viewport()->height() / visualRect(currentIndex()).height() - 1) : 1;
  for (int line = 0; line < lines; ++line) row = Across(row, action == MoveUp || action == MovePageUp ? -1 : 1).row();
  return days_.index(row);
}

QList<int> Grid::Chosen() const {
  QList<int> pictures;
  for (const QModelIndex& index : selectedIndexes()) pictures.append(days_.PictureAt(index.row()));
  std::sort(pictures.begin(), pictures.end());
  return pictures;
}

void Grid::scrollContentsBy(int dx, int dy) {
  QListView::scrollContentsBy(dx, dy);
  ask_.start(kAskMs);
}

void Grid::dataChanged(const QModelIndex& from, const QModelIndex& to, const QList<int>& roles) {
  QListView::dataChanged(from, to, roles);
  if (!roles.contains(CameraModel::kThumbnail)) return;
  asked_.remove(days_.PictureAt(from.row()));
  if (!divide_.isActive()) divide_.start(kCalmMs);
}

void Grid::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier && currentIndex().isValid()) {
    return onOpen(days_.PictureAt(currentIndex().row()));
  }
  if (event->key() == Qt::Key_Escape && selectionModel()->hasSelection()) return clearSelection();
  QListView::keyPressEvent(event);
}

// The first row that reaches below a height of the view.
int Grid::RowBelow(int height) const {
  int first = 0;
  for (int end = days_.rowCount(); first < end;) {
    const int middle = (first + end) / 2;
    visualRect(days_.index(middle)).bottom() < height ? first = middle + 1 : end = middle;
  }
  return first;
}

void Grid::AskForMissing() {
  const int height = viewport()->height();
  const int first = RowBelow(0);
  QList<int> missing;
  const auto add = [&](int from, int to) {
    for (int row = from; row < to; ++row) {
      const int picture = days_.PictureAt(row);
      if (picture >= 0 && pictures_.Lacks(picture)) missing.append(picture);
    }
  };
  add(first, RowBelow(2 * height));
  add(RowBelow(-height), first);
  // What was asked for and still comes is no reason to ask again.
  if (std::all_of(missing.begin(), missing.end(), [this](int picture) { return asked_.contains(picture); })) return;
  asked_ = QSet<int>(missing.begin(), missing.end());
  onWanted(missing);
}

}  // namespace desktop
