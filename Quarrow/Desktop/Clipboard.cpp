#include "Quarrow/Desktop/Clipboard.h"

#include "FennickCore/Storage/PhotoItem.h"

#include <QByteArray>
#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QUrl>

#include <utility>

namespace quarrow {

namespace {

constexpr fennick::Seconds kRenderTimeout{30};

QClipboard &systemClipboard() { return *QGuiApplication::clipboard(); }

} // namespace

Clipboard::Clipboard(fennick::PictureDecoder &decoder, fennick::MainQueue &mainQueue)
    : decoder_(decoder), mainQueue_(mainQueue) {}

Clipboard::~Clipboard() { latest_.cancel(); } // stops rendering

void Clipboard::copy(const std::vector<std::filesystem::path> &files) {
  latest_.cancel();
  offer(files, {});
  if (files.size() != 1 || fennick::isVideoName(files.front().filename().native()))
    return;
  if (!rendering_)
    rendering_ = std::make_unique<fennick::SerialQueue>("fennick.clipboard");
  rendering_->post([this, wanted = latest_.token(), file = files.front()] { render(wanted, file); });
}

// Runs on the queue. Of many files in a burst only the last one's picture is needed.
void Clipboard::render(const fennick::Lifetime::Token &wanted, const std::filesystem::path &file) {
  if (wanted.isCancelled())
    return;
  const fennick::RenderRequest request{
      .output = fennick::PictureType::png, .longEdge = kMostPixels, .stripAllMetadata = true};
  const auto picture = decoder_.render(file, request, kRenderTimeout);
  if (!picture)
    return;
  mainQueue_.post(wanted.guard([this, file, png = picture->bytes] { addPicture(file, png); }));
}

void Clipboard::addPicture(const std::filesystem::path &file, const std::string &png) {
  if (!offered_.isNull() && systemClipboard().mimeData() == offered_)
    offer({file}, QByteArray::fromStdString(png));
}

void Clipboard::offer(const std::vector<std::filesystem::path> &files, const QByteArray &png) {
  QList<QUrl> urls;
  QByteArray order = "copy";
  for (const auto &file : files) {
    urls.append(QUrl::fromLocalFile(QFile::decodeName(file.c_str())));
    order += "\n" + urls.last().toEncoded();
  }
  auto content = std::make_unique<QMimeData>();
  content->setUrls(urls);
  content->setData(QStringLiteral("x-special/gnome-copied-files"), order);
  if (!png.isEmpty())
    content->setData(QStringLiteral("image/png"), png);
  offered_ = content.get();
  systemClipboard().setMimeData(content.release()); // which takes it over
}

} // namespace quarrow
