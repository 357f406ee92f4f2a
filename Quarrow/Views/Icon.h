#pragma once

#include <QColor>
#include <QQmlEngine>
#include <QQuickPaintedItem>
#include <QString>
#include <QVariantMap>

namespace quarrow {

// One of the program's drawings (icons/<name>.svg), sharp at any size in the given colours. Decoration: its
// meaning is stated by the surrounding control. Main thread.
class Icon : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(QString name MEMBER name_ WRITE setName NOTIFY nameChanged)
  // Replaces `currentColor`.
  Q_PROPERTY(QColor color MEMBER color_ WRITE setColor NOTIFY colorChanged)
  // For drawings with several colours: each replaces "@key".
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
