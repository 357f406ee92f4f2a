#pragma once

#include <QColor>
#include <QQmlEngine>
#include <QQuickPaintedItem>
#include <QString>
#include <QVariantMap>

namespace quarrow {

// One of our own drawings (icons/<name>.svg), drawn sharply at any size in the given colours. Decoration:
// what it means is said by the control it stands in. Main thread.
class Icon : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(QString name MEMBER name_ WRITE setName NOTIFY nameChanged)
  // Takes the place of `currentColor`.
  Q_PROPERTY(QColor color MEMBER color_ WRITE setColor NOTIFY colorChanged)
  // For drawings of several colours: each takes the place of "@key".
  Q_PROPERTY(QVariantMap colors MEMBER colors_ WRITE setColors NOTIFY colorsChanged)

public:
  explicit Icon(QQuickItem *parent = nullptr);

  void setName(const QString &name);
  void setColor(const QColor &color);
  void setColors(const QVariantMap &colors);
  void paint(QPainter *painter) override;

signals:
  void nameChanged();
  void colorChanged();
  void colorsChanged();

private:
  [[nodiscard]] QByteArray drawing() const;

  QString name_;
  QColor color_ = Qt::black;
  QVariantMap colors_;
};

} // namespace quarrow
