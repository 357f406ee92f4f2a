#include "Quarrow/Desktop/PanelGeometry.h"

#include <algorithm>
#include <utility>

namespace quarrow {

namespace {

constexpr int kLowest = 240;
constexpr int kToSpare = 40;
constexpr int kHighestWithoutScreen = 660;
constexpr int kGap = 4; // to the icon, and to the edges of the available area

// The position assumed for an icon of unknown place: the end of the widest bar; for vertical bars the lower
// end.
QPoint trayCorner(const ScreenArea &screen) {
  const auto &[whole, available] = screen;
  const std::pair<int, QPoint> corners[] = {
      {available.top() - whole.top(), whole.topRight()},
      {whole.bottom() - available.bottom(), whole.bottomRight()},
      {available.left() - whole.left(), whole.bottomLeft()},
      {whole.right() - available.right(), whole.bottomRight()},
  };
  return std::ranges::max_element(corners, {}, &std::pair<int, QPoint>::first)->second;
}

// If there is not room for both ends, the far one yields.
int clamped(int wanted, int length, int first, int last) {
  return std::max(std::min(wanted, last - kGap - length + 1), first + kGap);
}

} // namespace

int panelHeight(int fittingHeight, std::optional<int> availableHeight) {
  const int cap = availableHeight ? *availableHeight - kToSpare : kHighestWithoutScreen;
  return std::min(std::max(fittingHeight, kLowest), std::max(cap, kLowest));
}

QPoint panelPlace(QSize panel, const ScreenArea &screen, std::optional<QRect> icon) {
  const QRect anchor = icon.value_or(QRect(trayCorner(screen), QSize(1, 1)));
  const bool below = anchor.center().y() <= screen.whole.center().y();
  const int x = anchor.center().x() - panel.width() / 2;
  const int y = below ? anchor.bottom() + 1 + kGap : anchor.top() - kGap - panel.height();
  const QRect &room = screen.available;
  return {clamped(x, panel.width(), room.left(), room.right()),
          clamped(y, panel.height(), room.top(), room.bottom())};
}

} // namespace quarrow
