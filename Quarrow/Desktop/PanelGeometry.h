#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>

namespace quarrow {

// Size and position of the panel under the tray icon, in device-independent pixels. Any thread.

constexpr int kPanelWidth = 300;

// Returns the height of the content, at least 240, and at most the visible height of the screen minus 40; 660
// without a screen.
[[nodiscard]] int panelHeight(int fittingHeight, std::optional<int> availableHeight);

// A screen, and the part that bars and docks leave free.
struct ScreenArea {
  QRect whole{};
  QRect available{};
};

// Returns the upper left corner of the panel: centred below the tray icon, above it in the lower half of the
// screen, and always inside the available area. Without the icon's place it is the corner next to the
// screen's bar, or the upper right one if there is no bar.
[[nodiscard]] QPoint panelPlace(QSize panel, const ScreenArea &screen, std::optional<QRect> icon);

} // namespace quarrow
