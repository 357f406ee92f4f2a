#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace quarrow {

// The state that the tray icon shows.
enum class TrayFace { normal, received };

// Returns the icon's tool tip and accessible name.
[[nodiscard]] QString trayText(TrayFace face);

// Returns the outline in one colour, at any size that trays use. Main thread.
[[nodiscard]] QIcon trayIcon(TrayFace face, const QColor &tint);

// Returns a visible colour for bars that do not announce theirs. Bars follow the colour scheme, except on
// desktops whose bar is always dark: `desktop` is XDG_CURRENT_DESKTOP.
[[nodiscard]] QColor trayTint(bool darkScheme, const QString &desktop);

} // namespace quarrow
