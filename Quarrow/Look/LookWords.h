#pragma once

#include "Quarrow/Look/LookPictures.h"

#include <QSize>
#include <QString>
#include <QVariantList>

// Descriptions of a photo. Pure functions; any thread.
namespace quarrow {

// Returns "4032 × 3024 · 2.4 MB · 2024年5月1日 10:00", without the dimensions if `pixels` is empty.
[[nodiscard]] QString lookLine(const QSize &pixels, std::int64_t bytes, fennick::Instant date);

// Returns entries with `label` and `text`; what is unknown is left out.
[[nodiscard]] QVariantList lookDetails(const QString &name, const QSize &pixels, const LookFacts &facts);

} // namespace quarrow
