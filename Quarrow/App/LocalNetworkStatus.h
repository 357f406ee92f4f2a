#pragma once

#include <QObject>
#include <QString>

namespace quarrow {

// The result of the self-check: whether the service answers at the address in the QR code.
class LocalNetworkStatus {
  Q_GADGET
  Q_PROPERTY(Kind kind MEMBER kind CONSTANT)
  Q_PROPERTY(QString message MEMBER message CONSTANT)

public:
  enum class Kind { failed, unknown, ok };
  Q_ENUM(Kind)

  Kind kind = Kind::unknown;
  QString message{}; // why it failed

  bool operator==(const LocalNetworkStatus &) const = default;
};

} // namespace quarrow
