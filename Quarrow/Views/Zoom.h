#pragma once

#include <QObject>
#include <QPointF>
#include <QQmlEngine>
#include <QRectF>
#include <QSize>
#include <QSizeF>

#include <numbers>

namespace quarrow {

// The position of a photo in a view that may be smaller: zooming about a point, and moving within bounds. A
// photo that is smaller than the view is centred; a larger one leaves no gap at the edges. Lengths are in the
// units of the view, except pixels. Main thread.
class Zoom : public QObject {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(QSizeF view READ view WRITE setView NOTIFY changed)
  Q_PROPERTY(QSize photo READ photo WRITE setPhoto NOTIFY changed)                // in its own pixels
  Q_PROPERTY(qreal pixelRatio READ pixelRatio WRITE setPixelRatio NOTIFY changed) // device pixels per unit
  Q_PROPERTY(QRectF frame READ frame NOTIFY changed)                              // where the photo stands
  Q_PROPERTY(int percent READ percent NOTIFY changed)         // 100: one pixel of the photo per device pixel
  Q_PROPERTY(int shownPixels READ shownPixels NOTIFY changed) // device pixels along the longer side
  Q_PROPERTY(bool fitted READ isFitted NOTIFY
                 changed) // the whole photo is visible, and stays so when the view changes
  // Whether the last change was a step, which may be animated.
  Q_PROPERTY(bool glides READ glides NOTIFY changed)

public:
  static constexpr qreal kMost = 8;                   // pixels of the screen to one of the photo
  static constexpr qreal kStep = std::numbers::sqrt2; // two steps double the size

  using QObject::QObject;

  [[nodiscard]] QSizeF view() const { return view_; }
  void setView(const QSizeF &view);
  [[nodiscard]] QSize photo() const { return photo_; }
  // Another photo is shown whole; so is the same one in another resolution or rotation.
  void setPhoto(const QSize &photo);
  [[nodiscard]] qreal pixelRatio() const { return pixelRatio_; }
  void setPixelRatio(qreal ratio);
  [[nodiscard]] QRectF frame() const { return frame_; }
  [[nodiscard]] int percent() const;
  [[nodiscard]] int shownPixels() const;
  [[nodiscard]] bool isFitted() const { return fitted_; }
  [[nodiscard]] bool glides() const { return glides_; }

  // Shows the whole photo; a photo smaller than the view is not enlarged.
  Q_INVOKABLE void fit();
  // Shows the whole photo without animation: for the next photo, which may have the same size.
  Q_INVOKABLE void reset();
  // Zooms one step in (1) or out (-1) about the middle of the view.
  Q_INVOKABLE void step(int direction);
  // Toggles between original size about `at` and the whole photo.
  Q_INVOKABLE void toggle(const QPointF &at);
  // Scales by `factor` and keeps the point `at` in place.
  Q_INVOKABLE void zoomBy(qreal factor, const QPointF &at);
  Q_INVOKABLE void pan(const QPointF &by);

signals:
  void changed();

private:
  [[nodiscard]] qreal fitScale() const;
  void scaleTo(qreal scale, const QPointF &at);
  void place(bool glides);

  QSizeF view_;
  QSize photo_;
  qreal pixelRatio_ = 1;
  qreal scale_ = 1; // device pixels per pixel of the photo
  QPointF middle_;  // of the view, as a share of the photo
  QRectF frame_;
  bool fitted_ = true;
  bool glides_ = false;
};

} // namespace quarrow
