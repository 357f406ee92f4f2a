#pragma once

#include <QObject>
#include <QQmlEngine>
#include <QString>
#include <QVariantList>

namespace quarrow {

// Formats values as text for the windows. Main thread.
class Phrases : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON

public:
  using QObject::QObject;

  // Returns the path with "~" for the home folder.
  Q_INVOKABLE [[nodiscard]] static QString folder(const QString &path);
  // Returns the choices of an address picker, each with `text` and `value` (the interface, empty for the
  // automatic choice): every interface of `addresses` (ServerModel's) once, and `preferred` even if it is not
  // up. Returns an empty list if there is nothing to choose.
  Q_INVOKABLE [[nodiscard]] static QVariantList addressChoices(const QVariantList &addresses,
                                                               const QString &preferred);
  // Returns "no shortcut" and each of `presets` (Shell's), with `text` and `value`.
  Q_INVOKABLE [[nodiscard]] static QVariantList hotKeyChoices(const QVariantList &presets);
  // Returns the terminal command that sends a photo to `uploadURL`; empty without a URL.
  Q_INVOKABLE [[nodiscard]] static QString curlCommand(const QString &uploadURL);
};

} // namespace quarrow
