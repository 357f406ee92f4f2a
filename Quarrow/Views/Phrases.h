#pragma once

#include <QObject>
#include <QQmlEngine>
#include <QString>
#include <QVariantList>

namespace quarrow {

// How the windows put values into words. Main thread.
class Phrases : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON

public:
  using QObject::QObject;

  // The folder as people write it: "~" for the home folder.
  Q_INVOKABLE [[nodiscard]] static QString folder(const QString &path);
  // What an address picker offers, each with `text` and `value` (the interface, empty for the automatic
  // choice): every interface of `addresses` (ServerModel's) once, and `preferred` even if it is not up.
  // Nothing where there is nothing to choose from.
  Q_INVOKABLE [[nodiscard]] static QVariantList addressChoices(const QVariantList &addresses,
                                                               const QString &preferred);
  // No shortcut, and each of `presets` (Shell's), with `text` and `value`.
  Q_INVOKABLE [[nodiscard]] static QVariantList hotKeyChoices(const QVariantList &presets);
  // What a terminal is given to send a photo to `uploadURL`; empty without an address.
  Q_INVOKABLE [[nodiscard]] static QString curlCommand(const QString &uploadURL);
};

} // namespace quarrow
