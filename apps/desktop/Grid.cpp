// The grid of pictures below headlines of days.
#include "apps/desktop/Grid.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <algorithm>
#include <cstdlib>

namespace desktop {
namespace {

// Thumbnails come one after another: days that arrive together move the pictures once.
constexpr int kCalmMs = 120;
constexpr int kAskMs = 15;

}  // namespace

Grid::Grid(CameraModel& pictures) : pictures_(pictures) {
  setModel(&pictures);
  setItemDelegate(&delegate_);
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
  divide_.callOnTimeout([this] { Divide(); });
  ask_.setSingleShot(true);
  ask_.callOnTimeout([this] { AskForMissing(); });
  // At once: what is drawn next must not be a picture that went.
  connect(&pictures, &QAbstractItemModel::modelReset, this, [this] {
    asked_.clear();
    doItemsLayout();
  });
  connect(this, &QListView::activated, this,
          [this](const QModelIndex& index) { onOpen(pictures_.PictureAt(index.row())); });
}

// What must not move: the current picture while it is in view, otherwise what stands first there, unless its time puts it elsewhere.
void Grid::Divide() {
  QPersistentModelIndex anchor = currentIndex();
  const bool isCurrent = visualRect(anchor).intersects(viewport()->rect());
  if (!isCurrent) anchor = pictures_.index(RowBelow(0));
  const int before = visualRect(anchor).top();
  pictures_.Divide();
  doItemsLayout();
  QScrollBar& bar = *verticalScrollBar();
  const int moved = visualRect(anchor).top() - before;
  const bool isFollowed = isCurrent || std::abs(moved) < viewport()->height();
  if (bar.value() > 0 && isFollowed) bar.setValue(bar.value() + moved);
}

QModelIndex Grid::First() const {
  return pictures_.index(1);  // below a headline
}

// The first line is shown with its headline.
void Grid::scrollTo(const QModelIndex& index, ScrollHint hint) {
  const bool isFirstLine = visualRect(index).top() == visualRect(First()).top();
  isFirstLine ? scrollToTop() : QListView::scrollTo(index, hint);
}

// The same column in the line above or below, or the last of that line where it is shorter.
int Grid::Across(int row, int step) const {
  const QRect here = visualRect(pictures_.index(row));
  int best = row;
  for (int next = row + step; next >= 0 && next < pictures_.rowCount(); next += step) {
    const QRect place = visualRect(pictures_.index(next));
    if (pictures_.PictureAt(next) < 0 || place.top() == here.top()) continue;
    if (best != row && place.top() != visualRect(pictures_.index(best)).top()) break;
    if (place.left() > here.left()) continue;
    best = next;
    if (step < 0) break;
  }
  return best;
}

QModelIndex Grid::moveCursor(CursorAction action, Qt::KeyboardModifiers) {
  int row = currentIndex().row();
  if (row < 0 || action == MoveHome) return First();
  if (action == MoveEnd) return pictures_.index(pictures_.rowCount() - 1);
  const auto beside = [&](int step) { return pictures_.IndexOf(pictures_.Beside(pictures_.PictureAt(row), step)); };
  if (action == MoveLeft || action == MovePrevious) return beside(-1);
  if (action == MoveRight || action == MoveNext) return beside(1);
  const bool isPage = action == MovePageUp || action == MovePageDown;
  const int lines = isPage ? std::max(1, viewport()->height() / visualRect(currentIndex()).height() - 1) : 1;
  for (int line = 0; line < lines; ++line) row = Across(row, action == MoveUp || action == MovePageUp ? -1 : 1);
  return pictures_.index(row);
}

QList<int> Grid::Chosen() const {
  QList<int> chosen;
  for (const QModelIndex& index : selectedIndexes()) chosen.append(pictures_.PictureAt(index.row()));
  std::sort(chosen.begin(), chosen.end());
  return chosen;
}

// Whatever brings other pictures into view draws them.
void Grid::paintEvent(QPaintEvent* event) {
  QListView::paintEvent(event);
  if (!ask_.isActive()) ask_.start(kAskMs);
}

void Grid::dataChanged(const QModelIndex& from, const QModelIndex& to, const QList<int>& roles) {
  QListView::dataChanged(from, to, roles);
  if (!roles.contains(Qt::DecorationRole)) return;
  asked_.remove(pictures_.PictureAt(from.row()));
  if (!divide_.isActive()) divide_.start(kCalmMs);
}

void Grid::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier && currentIndex().isValid()) {
    return onOpen(pictures_.PictureAt(currentIndex().row()));
  }
  if (event->key() == Qt::Key_Escape && selectionModel()->hasSelection()) return clearSelection();
  QListView::keyPressEvent(event);
}

// The first row that reaches below a height of the view.
int Grid::RowBelow(int height) const {
  int first = 0;
  for (int end = pictures_.rowCount(); first < end;) {
    const int middle = (first + end) / 2;
    visualRect(pictures_.index(middle)).bottom() < height ? first = middle + 1 : end = middle;
  }
  return first;
}

void Grid::AskForMissing() {
  const int height = viewport()->height();
  const int first = RowBelow(0);
  QList<int> missing;
  const auto add = [&](int from, int to) {
    for (int row = from; row < to; ++row) {
      const int picture = pictures_.PictureAt(row);
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
