#pragma once

#include <QObject>
#include <QPointF>
#include <QQmlEngine>
#include <QRectF>
#include <QSize>
#include <QSizeF>

#include <numbers>

namespace quarrow {

// Where a photo stands in a view that may be smaller than it: zoomed about a point, moved within bounds. A
// photo that is smaller than the view stands in its middle; one that is larger leaves no gap at the edges.
// Lengths are those of the view, unless pixels are named. Main thread.
class Zoom : public QObject {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(QSizeF view READ view WRITE setView NOTIFY changed)
  Q_PROPERTY(QSize photo READ photo WRITE setPhoto NOTIFY changed) // in its own pixels
  Q_PROPERTY(
      qreal pixelRatio READ pixelRatio WRITE setPixelRatio NOTIFY changed) // pixels of the screen to a unit
  Q_PROPERTY(QRectF frame READ frame NOTIFY changed)                       // where the photo stands
  Q_PROPERTY(int percent READ percent NOTIFY changed) // 100: a pixel of the photo on one of the screen
  Q_PROPERTY(int shownPixels READ shownPixels NOTIFY changed) // of the screen, along the longer side
  Q_PROPERTY(
      bool fitted READ isFitted NOTIFY changed) // all of it is seen, and stays so when the view changes
  // Whether the last change was a step, which may be shown as a movement.
  Q_PROPERTY(bool glides READ glides NOTIFY changed)

public:
  static constexpr qreal kMost = 8;                   // pixels of the screen to one of the photo
  static constexpr qreal kStep = std::numbers::sqrt2; // two steps double

  using QObject::QObject;

  [[nodiscard]] QSizeF view() const { return view_; }
  void setView(const QSizeF &view);
  [[nodiscard]] QSize photo() const { return photo_; }
  // Another photo is seen whole; the same one in another resolution or turned is another one too.
  void setPhoto(const QSize &photo);
  [[nodiscard]] qreal pixelRatio() const { return pixelRatio_; }
  void setPixelRatio(qreal ratio);
  [[nodiscard]] QRectF frame() const { return frame_; }
  [[nodiscard]] int percent() const;
  [[nodiscard]] int shownPixels() const;
  [[nodiscard]] bool isFitted() const { return fitted_; }
  [[nodiscard]] bool glides() const { return glides_; }

  // All of it; a photo smaller than the view is not enlarged.
  Q_INVOKABLE void fit();
  // The same at once: for the next photo, which may be as large as the last one.
  Q_INVOKABLE void reset();
  // One step larger (1) or smaller (-1), about the middle of the view.
  Q_INVOKABLE void step(int direction);
  // To a pixel for a pixel about `at`, and back to all of it.
  Q_INVOKABLE void toggle(const QPointF &at);
  // `factor` times as large, with what is at `at` staying there.
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
  qreal scale_ = 1; // pixels of the screen to one of the photo
  QPointF middle_;  // of the view, as a share of the photo
  QRectF frame_;
  bool fitted_ = true;
  bool glides_ = false;
};

} // namespace quarrow
