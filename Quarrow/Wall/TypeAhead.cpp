#include "Quarrow/Wall/TypeAhead.h"

#include <algorithm>
#include <utility>

namespace quarrow {

int TypeAhead::find(const QString &typed, int current, int count,
                    const std::function<QString(int place)> &nameOf) {
  const auto now = clock_.uptime();
  if (now - std::exchange(last_, now) >= kPause)
    typed_.clear();
  typed_ += typed;
  const bool repeats = std::ranges::all_of(typed_, [&](QChar each) { return each == typed_.front(); });
  const QString wanted = repeats ? typed_.left(1) : typed_;
  // While a name is being typed, the photo found so far may stay.
  const int first = std::max(current, 0) + (repeats && current >= 0 ? 1 : 0);
  for (int step = 0; step < count; ++step) {
    const int place = (first + step) % count;
    if (nameOf(place).startsWith(wanted, Qt::CaseInsensitive))
      return place;
  }
  return -1;
}

} // namespace quarrow
