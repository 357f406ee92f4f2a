#include "Quarrow/Views/Zoom.h"

#include <algorithm>
#include <cmath>

namespace quarrow {

namespace {

// Returns the start of a range of `length` whose fraction `middle` is in the middle of `view`, without a gap
// at its ends.
qreal placed(qreal view, qreal length, qreal middle) {
  if (length <= view)
    return (view - length) / 2;
  return std::clamp(view / 2 - middle * length, view - length, 0.0);
}

} // namespace

void Zoom::setView(const QSizeF &view) {
  if (view == view_)
    return;
  view_ = view;
  place(false);
}

void Zoom::setPhoto(const QSize &photo) {
  if (photo == photo_)
    return;
  photo_ = photo;
  fitted_ = true;
  place(false);
}

void Zoom::setPixelRatio(qreal ratio) {
  if (ratio == pixelRatio_ || !(ratio > 0))
    return;
  pixelRatio_ = ratio;
  place(false);
}

int Zoom::percent() const { return static_cast<int>(std::lround(scale_ * 100)); }

int Zoom::shownPixels() const {
  return static_cast<int>(std::lround(std::max(photo_.width(), photo_.height()) * scale_));
}

qreal Zoom::fitScale() const {
  if (photo_.isEmpty() || view_.isEmpty())
    return 1;
  const qreal across = view_.width() * pixelRatio_ / photo_.width();
  const qreal down = view_.height() * pixelRatio_ / photo_.height();
  return std::min({across, down, 1.0});
}

void Zoom::fit() {
  fitted_ = true;
  place(true);
}

void Zoom::reset() {
  fitted_ = true;
  place(false);
}

void Zoom::step(int direction) {
  scaleTo(scale_ * (direction > 0 ? kStep : 1 / kStep), QPointF(view_.width() / 2, view_.height() / 2));
  place(true);
}

void Zoom::toggle(const QPointF &at) {
  if (!fitted_)
    return fit();
  scaleTo(std::max(1.0, fitScale() * 2), at); // enlarges even a photo that fits
  place(true);
}

void Zoom::zoomBy(qreal factor, const QPointF &at) {
  scaleTo(scale_ * factor, at);
  place(false);
}

void Zoom::pan(const QPointF &by) {
  if (frame_.isEmpty())
    return;
  middle_ -= QPointF(by.x() / frame_.width(), by.y() / frame_.height());
  place(false);
}

void Zoom::scaleTo(qreal scale, const QPointF &at) {
  if (frame_.isEmpty())
    return;
  const qreal least = fitScale();
  const qreal next = std::clamp(scale, least, std::max(kMost, least));
  fitted_ = next <= least;
  const QPointF point((at.x() - frame_.x()) / frame_.width(), (at.y() - frame_.y()) / frame_.height());
  const QSizeF size = QSizeF(photo_) * (next / pixelRatio_);
  scale_ = next;
  middle_ = point - QPointF((at.x() - view_.width() / 2) / size.width(),
                            (at.y() - view_.height() / 2) / size.height());
}

void Zoom::place(bool glides) {
  glides_ = glides;
  if (fitted_) {
    scale_ = fitScale();
    middle_ = {0.5, 0.5};
  }
  const QSizeF size = QSizeF(photo_) * (scale_ / pixelRatio_);
  frame_ = QRectF(placed(view_.width(), size.width(), middle_.x()),
                  placed(view_.height(), size.height(), middle_.y()), size.width(), size.height());
  if (!frame_.isEmpty()) // starts from the position that the bounds allowed
    middle_ = QPointF((view_.width() / 2 - frame_.x()) / frame_.width(),
                      (view_.height() / 2 - frame_.y()) / frame_.height());
  emit changed();
}

} // namespace quarrow
