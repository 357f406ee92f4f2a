#pragma once

#include <QQmlEngine>
#include <QQuickPaintedItem>
#include <QString>

namespace quarrow {

// The QR code of a text, black on whatever is behind it, in the middle of the item and as large as fits:
// every module gets the same whole number of the screen's dots, so that it is sharp on every screen. The
// light zone around it that phones want is the surroundings'. Main thread.
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
