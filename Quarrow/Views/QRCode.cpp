#include "Quarrow/Views/QRCode.h"

#include "FennickCore/Network/QRCodeRenderer.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace quarrow {

void QRCode::setText(const QString &text) {
  if (text_ == text)
    return;
  text_ = text;
  update();
  emit textChanged();
}

void QRCode::paint(QPainter *painter) {
  const auto modules = fennick::QRCodeRenderer::modules(text_.toStdString());
  if (!modules)
    return;
  const qreal dotsPerUnit = painter->device()->devicePixelRatio();
  const auto across = static_cast<qreal>(modules->side);
  const qreal module =
      std::max(1.0, std::floor(std::min(width(), height()) * dotsPerUnit / across)) / dotsPerUnit;
  const auto edge = [&](qreal length) {
    return std::round((length - module * across) / 2 * dotsPerUnit) / dotsPerUnit;
  };
  painter->setRenderHint(QPainter::Antialiasing, false);
  painter->translate(edge(width()), edge(height()));
  for (std::int64_t y = 0; y < modules->side; ++y)
    for (std::int64_t x = 0; x < modules->side; ++x)
      if (modules->isDark(x, y))
        painter->fillRect(
            QRectF(static_cast<qreal>(x) * module, static_cast<qreal>(y) * module, module, module),
            Qt::black);
}

} // namespace quarrow
