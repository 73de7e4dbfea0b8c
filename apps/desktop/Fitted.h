#ifndef KELVA_APPS_DESKTOP_FITTED_H_
#define KELVA_APPS_DESKTOP_FITTED_H_

#include <QRectF>

namespace desktop {

/// A picture of this size as large as it can be within a place, in its middle.
inline QRectF Fitted(QSizeF picture, const QRectF& place) {
  QRectF fitted(QPointF(), picture.scaled(place.size(), Qt::KeepAspectRatio));
  fitted.moveCenter(place.center());
  return fitted;
}

}  // namespace desktop

#endif  // KELVA_APPS_DESKTOP_FITTED_H_
