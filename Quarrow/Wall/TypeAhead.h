#pragma once

#include "FennickCore/Platform/Threads/Clock.h"

#include <QString>

#include <functional>

namespace quarrow {

// Finds photos by the beginning of their names while the user types. Main thread.
class TypeAhead {
public:
  // After a pause of this length a new name begins.
  static constexpr fennick::Seconds kPause{1};

  // `clock` outlives the object.
  explicit TypeAhead(const fennick::Clock &clock) : clock_(clock) {}

  // Returns the place of the next photo whose name begins with what was typed, ignoring case, going around
  // the `count` photos from `current`; -1 if there is none. Repeating one character goes from one name that
  // begins with it to the next.
  [[nodiscard]] int find(const QString &typed, int current, int count,
                         const std::function<QString(int place)> &nameOf);

private:
  const fennick::Clock &clock_;
  QString typed_;
  fennick::Uptime last_;
};

} // namespace quarrow
