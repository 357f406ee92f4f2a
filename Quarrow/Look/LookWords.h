#pragma once

#include "Quarrow/Look/LookPictures.h"

#include <QSize>
#include <QString>
#include <QVariantList>

// What is known of a photo, in words. Pure functions; any thread.
namespace quarrow {

// "4032 × 3024 · 2.4 MB · 2024年5月1日 10:00"; without the size in pixels when that is empty.
[[nodiscard]] QString lookLine(const QSize &pixels, std::int64_t bytes, fennick::Instant date);

// Each with `label` and `text`; what is not known is left out.
[[nodiscard]] QVariantList lookDetails(const QString &name, const QSize &pixels, const LookFacts &facts);

} // namespace quarrow
