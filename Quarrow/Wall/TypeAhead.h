#pragma once

#include "FennickCore/Platform/Threads/Clock.h"

#include <QString>

#include <functional>

namespace quarrow {

// Finds photos by the beginning of their names while a person types. Main thread.
class TypeAhead {
public:
  // A pause of this length begins another name.
  static constexpr fennick::Seconds kPause{1};

  // `clock` outlives the object.
  explicit TypeAhead(const fennick::Clock &clock) : clock_(clock) {}

  // The place of the next photo whose name begins with what was typed so far, upper or lower case, going
  // around the `count` photos from `current`; -1 when there is none. The same character again and again goes
  // from one name with it to the next.
  [[nodiscard]] int find(const QString &typed, int current, int count,
                         const std::function<QString(int place)> &nameOf);

private:
  const fennick::Clock &clock_;
  QString typed_;
  fennick::Uptime last_;
};

} // namespace quarrow
