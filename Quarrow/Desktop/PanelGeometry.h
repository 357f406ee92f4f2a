#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>

namespace quarrow {

// How large the panel under the tray icon is and where it stands, in device-independent pixels. Any thread.

constexpr int kPanelWidth = 300;

// The height that the content wants, at least 240, and no more than what is visible of the screen leaves with
// 40 to spare; 660 without a screen.
[[nodiscard]] int panelHeight(int fittingHeight, std::optional<int> availableHeight);

// A screen, and what bars and docks leave of it.
struct ScreenArea {
  QRect whole{};
  QRect available{};
};

// Where the upper left corner of a panel goes: centred below the tray icon, above it in the lower half of the
// screen, and always inside what is available. Without an icon's place it is the corner next to where the
// screen's bar keeps its tray, the upper right one when there is no bar.
[[nodiscard]] QPoint panelPlace(QSize panel, const ScreenArea &screen, std::optional<QRect> icon);

} // namespace quarrow
