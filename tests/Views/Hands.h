#pragma once

#include <QObject>
#include <QQuickItem>
#include <QQuickWindow>
#include <QStringList>

namespace quarrow::test {

// Input and inspection without sight or without a mouse. Main thread.
class Hands : public QObject {
  Q_OBJECT

public:
  Q_INVOKABLE static void press(QQuickWindow *window, int key, int modifiers = Qt::NoModifier);

  // Drags `data` (text by format) through the points of the window and drops it on the last one if `drops`.
  // Returns whether a drop is accepted there.
  Q_INVOKABLE static bool drag(QQuickWindow *window, const QVariantMap &data, const QVariantList &points,
                               bool drops);

  // Returns problems in the window's accessible tree: every focusable control needs a role and a name.
  Q_INVOKABLE static QStringList unnamed(QQuickWindow *window);
  // Returns the controls that Tab does not reach.
  Q_INVOKABLE static QStringList unreached(QQuickWindow *window);
  // Returns role and description of the first node with this name in the accessible tree; empty if there is
  // none.
  Q_INVOKABLE static bool speaks(QQuickWindow *window, const QString &name);
  // Returns the text of the QR code on the screen, read by an independent program.
  Q_INVOKABLE static QString readCode(QQuickWindow *window);
};

} // namespace quarrow::test
