#pragma once

#include <QQmlEngine>
#include <QQuickPaintedItem>
#include <QString>

namespace quarrow {

// The QR code of a text, black without a background, centred and as large as fits: every module is the same
// whole number of device pixels, so that it is sharp on every screen. The surroundings provide the quiet
// zone. Main thread.
class QRCode : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(QString text MEMBER text_ WRITE setText NOTIFY textChanged)

public:
  using QQuickPaintedItem::QQuickPaintedItem;

  void setText(const QString &text);
  void paint(QPainter *painter) override;

signals:
  void textChanged();

private:
  QString text_;
};

} // namespace quarrow
