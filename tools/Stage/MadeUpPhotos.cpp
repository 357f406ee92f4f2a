#include "tools/Stage/MadeUpPhotos.h"

#include "tools/Stage/Landscape.h"

#include <QSize>
#include <QString>

namespace quarrow::test {

namespace {

QSize sizeOf(const QString &name) {
  if (name.contains("pano"))
    return {9000, 2000};
  if (name.contains("tall"))
    return {1200, 6000};
  if (name.contains("huge"))
    return {40000, 30000};
  return qHash(name, 1) % 3 == 0 ? QSize(3024, 4032) : QSize(4032, 3024);
}

QString nameOf(const std::filesystem::path &file) { return QString::fromStdString(file.filename().string()); }

} // namespace

fennick::PictureResult<fennick::PictureFacts> MadeUpPhotos::facts(const std::filesystem::path &file) {
  if (!all_)
    return FakeDecoder::facts(file);
  if (nameOf(file).contains("broken"))
    return kFault(fennick::PictureFault::undecodable);
  auto facts = FakeDecoder::facts(file);
  facts->width = sizeOf(nameOf(file)).width();
  facts->height = sizeOf(nameOf(file)).height();
  return facts;
}

fennick::PictureResult<std::string> MadeUpPhotos::thumbnail(const std::filesystem::path &file,
                                                            std::int64_t maxPixel, double quality) {
  if (!all_)
    return FakeDecoder::thumbnail(file, maxPixel, quality);
  const auto most = static_cast<int>(maxPixel);
  return landscape(sizeOf(nameOf(file)).scaled(most, most, Qt::KeepAspectRatio),
                   static_cast<int>(qHash(nameOf(file), 1) % 60));
}

} // namespace quarrow::test
