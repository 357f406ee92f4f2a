#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace quarrow {

// What the icon in the tray shows.
enum class TrayFace { normal, received };

// What it is called: shown when the pointer rests on it, and read aloud.
[[nodiscard]] QString trayText(TrayFace face);

// The outline in one colour, as large as any tray draws it. Main thread.
[[nodiscard]] QIcon trayIcon(TrayFace face, const QColor &tint);

// The colour that is seen on a bar that does not tell its own. Bars follow the colour scheme, except on
// desktops whose bar is dark under light windows too: `desktop` is XDG_CURRENT_DESKTOP.
[[nodiscard]] QColor trayTint(bool darkScheme, const QString &desktop);

} // namespace quarrow
