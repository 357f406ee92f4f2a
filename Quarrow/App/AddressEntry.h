#pragma once

#include <QObject>
#include <QString>

namespace quarrow {

// A usable address for QML.
class AddressEntry {
  Q_GADGET
  Q_PROPERTY(QString interface MEMBER interface CONSTANT)
  Q_PROPERTY(QString address MEMBER address CONSTANT)
  Q_PROPERTY(QString kind MEMBER kind CONSTANT)

public:
  QString interface{}; // "wlan0"
  QString address{};   // dotted decimal
  QString kind{};      // "wifi", "wired", "hotspot", "other"

  bool operator==(const AddressEntry &) const = default;
};

} // namespace quarrow
