#include "tests/Views/Hands.h"

#include "tests/Support/QRReader.h"

#include <QAccessible>
#include <QDragEnterEvent>
#include <QImage>
#include <QMimeData>
#include <QSet>
#include <QTest>

#include <algorithm>
#include <functional>

namespace quarrow::test {

namespace {

void walk(QAccessibleInterface *node, const std::function<void(QAccessibleInterface &)> &visit) {
  if (node == nullptr)
    return;
  visit(*node);
  for (int i = 0; i < node->childCount(); ++i)
    walk(node->child(i), visit);
}

QString describe(const QObject *object) {
  return QString("%1 %2 \"%3\"")
      .arg(object->metaObject()->className(), object->objectName(), object->property("text").toString());
}

void collectStops(QQuickItem &item, QSet<QQuickItem *> &stops) {
  if (!item.isVisible() || !item.isEnabled())
    return;
  if (item.activeFocusOnTab())
    stops.insert(&item);
  for (auto *child : item.childItems())
    collectStops(*child, stops);
}

} // namespace

void Hands::press(QQuickWindow *window, int key, int modifiers) {
  QTest::keyClick(window, static_cast<Qt::Key>(key), static_cast<Qt::KeyboardModifiers>(modifiers));
}

bool Hands::drag(QQuickWindow *window, const QVariantMap &data, const QVariantList &points, bool drops) {
  QMimeData content;
  for (auto each = data.begin(); each != data.end(); ++each)
    content.setData(each.key(), each.value().toString().toUtf8());
  QDragLeaveEvent leave; // ends an earlier drag
  QCoreApplication::sendEvent(window, &leave);
  const auto first = points.first().toPointF().toPoint();
  QDragEnterEvent enter(first, Qt::CopyAction, &content, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(window, &enter);
  const bool accepted = enter.isAccepted();
  for (const auto &point : points) {
    QDragMoveEvent move(point.toPointF().toPoint(), Qt::CopyAction, &content, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window, &move);
  }
  if (drops) {
    QDropEvent drop(points.last().toPointF(), Qt::CopyAction, &content, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window, &drop);
  }
  return accepted;
}

QStringList Hands::unnamed(QQuickWindow *window) {
  QAccessible::setActive(true);
  QStringList problems;
  int focusable = 0;
  walk(QAccessible::queryAccessibleInterface(window), [&](QAccessibleInterface &node) {
    if (!node.state().focusable || node.state().invisible || node.role() == QAccessible::Window)
      return;
    ++focusable;
    if (node.text(QAccessible::Name).isEmpty() || node.role() == QAccessible::NoRole ||
        node.role() == QAccessible::Client)
      problems.append(describe(node.object()));
  });
  if (focusable == 0)
    problems.append("nothing takes the keyboard");
  return problems;
}

QStringList Hands::unreached(QQuickWindow *window) {
  QSet<QQuickItem *> stops;
  collectStops(*window->contentItem(), stops);
  QSet<QQuickItem *> met;
  for (qsizetype i = 0; i <= stops.size(); ++i) {
    press(window, Qt::Key_Tab);
    for (auto *item = window->activeFocusItem(); item != nullptr; item = item->parentItem())
      met.insert(item); // focus on an item counts for its list
  }
  QStringList missed;
  for (const auto *each : stops - met)
    missed.append(describe(each));
  return missed;
}

bool Hands::speaks(QQuickWindow *window, const QString &name) {
  QAccessible::setActive(true);
  bool found = false;
  walk(QAccessible::queryAccessibleInterface(window), [&](QAccessibleInterface &node) {
    found = found || (node.text(QAccessible::Name) == name && !node.state().invisible);
  });
  return found;
}

QString Hands::readCode(QQuickWindow *window) {
  const QImage image = window->grabWindow();
  const auto isDark = [&](std::int64_t x, std::int64_t y) {
    const QPoint at(static_cast<int>(x), static_cast<int>(y));
    return image.valid(at) && qGray(image.pixel(at)) < 128;
  };
  return QString::fromStdString(fennick::test::readQRCode(std::max(image.width(), image.height()), isDark));
}

} // namespace quarrow::test
