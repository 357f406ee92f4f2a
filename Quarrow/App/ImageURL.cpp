#include "Quarrow/App/ImageURL.h"

#include <QByteArray>
#include <QLatin1String>

#include <png.h>

namespace quarrow {

namespace {

QByteArray pngOf(const fennick::Bitmap &bitmap) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(bitmap.width);
  image.height = static_cast<png_uint_32>(bitmap.height);
  image.format = PNG_FORMAT_RGB;
  png_alloc_size_t size = 0;
  const auto write = [&](void *memory) {
    return png_image_write_to_memory(&image, memory, &size, 0, bitmap.rgb.data(), 0, nullptr) != 0;
  };
  if (!write(nullptr))
    return {};
  QByteArray bytes(static_cast<qsizetype>(size), Qt::Uninitialized);
  return write(bytes.data()) ? bytes.first(static_cast<qsizetype>(size)) : QByteArray();
}

} // namespace

QUrl imageURL(const fennick::Bitmap &bitmap) {
  const QByteArray png = pngOf(bitmap);
  return png.isEmpty() ? QUrl() : QUrl(QLatin1String("data:image/png;base64,") + png.toBase64());
}

} // namespace quarrow
