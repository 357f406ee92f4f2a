#pragma once

#include <QObject>
#include <QQuickItem>
#include <QQuickWindow>
#include <QStringList>

namespace quarrow::test {

// What a person without sight, or without a mouse, does with a window. Main thread.
class Hands : public QObject {
  Q_OBJECT

public:
  Q_INVOKABLE static void press(QQuickWindow *window, int key, int modifiers = Qt::NoModifier);

  // Drags `data` (by format, as text) from one point of the window to the next, and drops it on the last one
  // if `drops`. Whether it may be dropped there.
  Q_INVOKABLE static bool drag(QQuickWindow *window, const QVariantMap &data, const QVariantList &points,
                               bool drops);

  // What is wrong in the window's accessible tree: everything that takes the keyboard has a role and a name.
  Q_INVOKABLE static QStringList unnamed(QQuickWindow *window);
  // The controls that Tab does not come to on its way around the window.
  Q_INVOKABLE static QStringList unreached(QQuickWindow *window);
  // The first thing of this name in the accessible tree: "" when there is none, else its role and
  // description.
  Q_INVOKABLE static bool speaks(QQuickWindow *window, const QString &name);
  // What an independent program reads from the QR code on the screen.
  Q_INVOKABLE static QString readCode(QQuickWindow *window);
};

} // namespace quarrow::test
