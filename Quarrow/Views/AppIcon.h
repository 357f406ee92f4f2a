#pragma once

#include <QIcon>
#include <QQmlEngine>
#include <QQuickPaintedItem>
#include <QString>

namespace quarrow {

// The icon of an installed application: a file, or a name in the desktop's icon themes, or else a generic
// drawing. Decoration. Main thread.
class AppIcon : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(QString name MEMBER name_ WRITE setName NOTIFY nameChanged)

public:
  explicit AppIcon(QQuickItem *parent = nullptr);

  void setName(const QString &name);
  void paint(QPainter *painter) override;

signals:
  void nameChanged();

private:
  QString name_;
  QIcon icon_;
};

} // namespace quarrow
